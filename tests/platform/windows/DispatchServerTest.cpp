#include <gtest/gtest.h>

#include "platform/windows/DispatchServer.h"
#include "tests/platform/windows/RecordingDispatch.h"

namespace kestrelon::testing {
namespace {

// An object of ours that keeps the last call and answers as a test says.
class AnsweringObject final : public DispatchObject {
 public:
  std::function<Value()> answer = [] { return Value(); };
  std::string last;  // kind, member and arguments
  Arguments arguments;

  Value Invoke(InvokeKind kind, StringView member, const Arguments& given) override {
    last = std::to_string(static_cast<int>(kind)) + " " + ToUtf8(member);
    for (const Value& value : given.positional) last += " " + Describe(value);
    for (const auto& [name, value] : given.named)
      last += " " + ToUtf8(name) + "=" + Describe(value);
    arguments = given;
    return answer();
  }
  std::unique_ptr<Enumerator> Enumerate() override {
    const Value elements = answer();
    if (!elements.IsArray()) throw AutomationError(kNotACollection);
    return std::make_unique<Walk>(elements.AsArray());
  }
  String TypeName() const override { return u"Answering"; }

 private:
  class Walk final : public Enumerator {
   public:
    explicit Walk(Value::Array elements) : elements_(std::move(elements)) {}
    std::optional<Value> Next() override {
      return next_ < elements_.size() ? std::optional(elements_[next_++]) : std::nullopt;
    }

   private:
    Value::Array elements_;
    size_t next_ = 0;
  };
};

class ServerTest : public ::testing::Test {
 protected:
  HRESULT Invoke(DISPID id, WORD flags, DISPPARAMS parameters, VARIANT* result = nullptr) {
    return server_->Invoke(id, IID_NULL, 0, flags, &parameters, result, nullptr, nullptr);
  }

  const std::shared_ptr<AnsweringObject> object_ = std::make_shared<AnsweringObject>();
  const ComPtr<IDispatch> server_ = DispatchOf(object_);
  const Object client_ = ObjectOf(server_.Get());
};

TEST_F(ServerTest, HandsOnWhatAClientOfOursAsks) {
  client_.Get(u"Name");
  EXPECT_EQ(object_->last, "0 Name");
  client_.Call(u"name", 1, Value::Omitted(), Named(u"Start", 5));
  EXPECT_EQ(object_->last, "2 name 3:1 10: Start=3:5") << "in the spelling of this call";
  client_.Put(u"Item", 3, u"new", Named(u"Start", 5));
  EXPECT_EQ(object_->last, "1 Item 3:3 8:new Start=3:5");

  object_->answer = [this] { return Value(Object(object_)); };
  EXPECT_NE(client_.GetChild(u"Name").pointer(), object_) << "results stay wrapped";
  client_.Put(u"Item", client_.GetChild(u"Name"));
  EXPECT_EQ(object_->arguments.positional.at(0).AsObject(), object_) << "arguments do not";
  object_->arguments = {};
}

TEST_F(ServerTest, FailsAsItsObjectDoes) {
  for (const int number : {438, -2147221233}) {
    int calls = 0;
    object_->answer = [&]() -> Value {
      ++calls;
      throw AutomationError(number, u"Own words");
    };
    EXPECT_EQ(FailureOf([&] { client_.Get(u"Name"); }), std::to_string(number) + ": Own words");
    EXPECT_EQ(calls, 1);
  }
  object_->answer = []() -> Value { throw std::string("a bug"); };
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {}), E_UNEXPECTED);
}

TEST_F(ServerTest, IsWalkedAsACollection) {
  EXPECT_EQ(FailureOf([&] { client_.Enumerate(); }), "451: Object not a collection");
  object_->answer = [] { return Value(Value::Array{u"a", 2, Value()}); };
  std::string walked;
  const auto walk = client_.Enumerate();
  while (const auto element = walk->Next()) walked += Describe(*element) + " ";
  EXPECT_EQ(walked, "8:a 3:2 0: ");

  Variant collection;
  ASSERT_EQ(Invoke(DISPID_NEWENUM, DISPATCH_PROPERTYGET, {}, &collection), S_OK);
  ComPtr<IEnumVARIANT> elements;
  ASSERT_EQ(collection.punkVal->QueryInterface(IID_PPV_ARGS(&elements)), S_OK);
  Variant found[3];
  ULONG fetched = 9;
  EXPECT_EQ(elements->Skip(1), S_OK);
  EXPECT_EQ(elements->Next(3, found, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 2U);
  EXPECT_EQ(found[0].lVal, 2);
}

TEST_F(ServerTest, StandsCarelessCallers) {
  Variant value(Value(u"v"));
  DISPID unknown = 4711;
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, {}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {&value, &unknown, 1, 1}), DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {nullptr, &unknown, 0, 1}), E_INVALIDARG);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {&value, nullptr, 1, 1}), E_INVALIDARG);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {nullptr, nullptr, 1, 0}), E_INVALIDARG);
  EXPECT_EQ(Invoke(unknown, DISPATCH_METHOD, {}), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, {&value, nullptr, 1, 0}), S_OK);
  EXPECT_EQ(object_->last, "1  8:v") << "a put without the put's name";
  object_->answer = [this] { return Value(Object(object_)); };
  EXPECT_EQ(Invoke(DISPID_VALUE, DISPATCH_METHOD, {}), S_OK) << "an answer that nobody takes";
}

}  // namespace
}  // namespace kestrelon::testing

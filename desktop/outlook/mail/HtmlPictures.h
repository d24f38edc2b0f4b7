// The pictures that an HTML page holds within itself.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrelon::desktop {

struct HtmlPicture {
  std::string id;       // what the page refers to as cid:ID
  std::string subtype;  // of image/…
  std::string content;
};

struct PageAndPictures {
  std::string html;
  std::vector<HtmlPicture> pictures;
};

// Parts a page from its pictures: mail programs show those that stand beside the page, few those
// within it. Each base64 data URI of an image in an attribute src, background or style becomes a
// reference to a picture; equal ones are one picture. All else stays. Ids are pictureN.`id_end`.
PageAndPictures TakePictures(std::string_view html, std::string_view id_end);

}  // namespace kestrelon::desktop

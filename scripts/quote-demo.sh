# The quotes and reports of ./demo.
# Needs $kestrelon, $out, drafts and show_new_draft.

quote_mailbox=$project/$out/quotes
mkdir -p "$quote_mailbox"
export KESTRELON_MAILBOX=$quote_mailbox

# quote WHAT TEMPLATE FILE: one quote from the example record.
quote() {
  say "$1"
  "$kestrelon" call WordQuote xmlDoc=@examples/Quote.xml "strTemplate=examples/$2" \
    "strSavePath=$out/$3" strMakeWordVisible=false strReplaceinheader=true
  ls -l "$out/$3"
}

quote "A quote, its lines in a table of the Word template" QuoteTable.dotx QuoteTable.docx
quote "The same as PDF" QuoteTable.dotx QuoteTable.pdf
quote "A quote, its lines in an HTML template, room by room" QuoteHtml.dotx QuoteHtml.docx
quote "The same as PDF" QuoteHtml.dotx QuoteHtml.pdf

for kind in attach attachhtml attachpdf html; do
  say "A quote in a mail: $kind"
  before=$(drafts)
  "$kestrelon" call WordQuoteHtml xmlDoc=@examples/Quote.xml address=zoe@thistleandcrumb.example \
    Subject="LQ-2017/0119" "mailType=$kind" addressType=Email strTemplate=examples/QuoteHtml.dotx \
    strFormat= strSavePath= strReplaceinheader=true strMakeWordVisible=0 strQuoteFileName=
  show_new_draft "$before"
done

say "A report, as PDF in a mail: CreateHTMforPDF"
before=$(drafts)
"$kestrelon" call CreateHTMforPDF theBody=@examples/Report.htm theUniqueName="Open quotes 12:30" \
  address=office@larkfield.example Subject="Open quotes" mailType=Report addressType=Email
show_new_draft "$before"

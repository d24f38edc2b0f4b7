#!/usr/bin/env python3
"""Writes Letter.dotx, Seminar.dotx and the two Quote….dotx beside this script, always the same.

The tags stand in the XML as a word processor leaves them after some editing: cut into runs by
revision ids, proofing marks, bookmarks and formatting, inside links, content controls and tracked
insertions.
"""

import itertools
import pathlib
import struct
import zipfile
import zlib
from xml.sax.saxutils import escape

import WordParts
from WordParts import DECLARATION, NAMESPACES, OFFICE, SCHEMAS

RSIDS = ["00A5137C", "001D5E0B", "004B27F1", "0063A9D4", "008E41C2", "00B70F36", "00D2684E"]
OFFICE_TYPE = "application/vnd.openxmlformats-officedocument."
RELATIONSHIP = SCHEMAS + "officeDocument/2006/relationships/"


# --- text -----------------------------------------------------------------------------------------

def run(text, properties="", rsid=None, inside=None):
    """A run; `inside` takes the place of the text (a field character, a tab, …)."""
    mark = f' w:rsidR="{rsid}"' if rsid else ""
    content = inside or f'<w:t xml:space="preserve">{escape(text)}</w:t>'
    return (f"<w:r{mark}>" + (f"<w:rPr>{properties}</w:rPr>" if properties else "")
            + content + "</w:r>")


def revised(*pieces, properties=""):
    """Text typed in several sessions: a run with another revision id for each piece."""
    return "".join(run(piece, properties, RSIDS[1 + i % 6]) for i, piece in enumerate(pieces))


def proofed(before, word, after, properties=""):
    """A word with the spelling checker's wavy line."""
    return (run(before, properties) + '<w:proofErr w:type="spellStart"/>' + run(word, properties)
            + '<w:proofErr w:type="spellEnd"/>' + run(after, properties))


def bookmarked(before, after, name, id, properties=""):
    """A bookmark that begins in the middle of a word."""
    return (run(before, properties) + f'<w:bookmarkStart w:id="{id}" w:name="{name}"/>'
            + run(after, properties) + f'<w:bookmarkEnd w:id="{id}"/>')


def half_bold(before, after):
    return run(before) + run(after, "<w:b/><w:bCs/>")


def inserted(text, id):
    return (f'<w:ins w:id="{id}" w:author="R. Holm" w:date="2017-03-02T15:31:00Z">'
            + run(text, rsid=RSIDS[5]) + "</w:ins>")


def deleted(text, id):
    return (f'<w:del w:id="{id}" w:author="R. Holm" w:date="2017-03-02T15:31:00Z">'
            f'<w:r w:rsidDel="{RSIDS[5]}"><w:delText xml:space="preserve">{escape(text)}</w:delText>'
            "</w:r></w:del>")


def content_control(title, id, content):
    return (f'<w:sdt><w:sdtPr><w:alias w:val="{title}"/><w:tag w:val="{title}"/>'
            f'<w:id w:val="{id}"/><w:text/></w:sdtPr><w:sdtContent>{content}</w:sdtContent></w:sdt>')


def link(relationship_id, *content):
    return (f'<w:hyperlink r:id="{relationship_id}" w:history="1">' + "".join(content)
            + "</w:hyperlink>")


def field(code, result, properties=""):
    def mark(kind):
        return run("", properties, inside=f'<w:fldChar w:fldCharType="{kind}"/>')
    return (mark("begin")
            + run("", properties, inside=f'<w:instrText xml:space="preserve"> {code} </w:instrText>')
            + mark("separate") + run(result, properties) + mark("end"))


TAB = run("", inside="<w:tab/>")

paragraph_ids = itertools.count(0x2A10C001)


def paragraph(style, *content, more=""):
    """`style` "" is Normal; `more` is what pPr has after the style. Plain text becomes a run."""
    inner = "".join(c if c.startswith("<w:") or c.startswith("<mc:") else run(c) for c in content)
    properties = (f'<w:pStyle w:val="{style}"/>' if style else "") + more
    return (f'<w:p w14:paraId="{next(paragraph_ids):08X}" w14:textId="77777777" '
            f'w:rsidR="{RSIDS[0]}" w:rsidRDefault="{RSIDS[0]}">'
            + (f"<w:pPr>{properties}</w:pPr>" if properties else "") + inner + "</w:p>")


def bullet(*content):
    return paragraph("ListParagraph", *content,
                     more='<w:numPr><w:ilvl w:val="0"/><w:numId w:val="1"/></w:numPr>')


def table(style, widths, rows, header=True, last=False):
    """`rows` are lists of (columns, content) or content; content is paragraphs."""
    def cell(width, columns, content):
        span = f'<w:gridSpan w:val="{columns}"/>' if columns > 1 else ""
        return (f'<w:tc><w:tcPr><w:tcW w:w="{width}" w:type="dxa"/>{span}</w:tcPr>{content}</w:tc>')

    def row(index, cells):
        properties = "<w:cantSplit/>" + ("<w:tblHeader/>" if header and index == 0 else "")
        text, at = "", 0
        for item in cells:
            columns, content = item if isinstance(item, tuple) else (1, item)
            text += cell(sum(widths[at:at + columns]), columns, content)
            at += columns
        return f'<w:tr w:rsidR="{RSIDS[2]}"><w:trPr>{properties}</w:trPr>{text}</w:tr>'

    # Without borders, the text of the cells stands where the text around the table does.
    indent = '<w:tblInd w:w="-108" w:type="dxa"/>' if style == "TableNormal" else ""
    look = 0x0400 | 0x0020 * header | 0x0040 * last
    return (f'<w:tbl><w:tblPr><w:tblStyle w:val="{style}"/><w:tblW w:w="{sum(widths)}" '
            f'w:type="dxa"/>{indent}<w:tblLayout w:type="fixed"/>'
            f'<w:tblLook w:val="{look:04X}" w:firstRow="{int(header)}" w:lastRow="{int(last)}" '
            'w:firstColumn="0" w:lastColumn="0" w:noHBand="0" w:noVBand="1"/></w:tblPr><w:tblGrid>'
            + "".join(f'<w:gridCol w:w="{w}"/>' for w in widths) + "</w:tblGrid>"
            + "".join(row(i, cells) for i, cells in enumerate(rows)) + "</w:tbl>")


# --- drawings -------------------------------------------------------------------------------------

def logo_png(side=144):
    """A rounded square with three rising bars, four samples a pixel each way."""
    def colour(x, y):
        corner = 0.2
        dx, dy = max(corner - x, x - 1 + corner, 0), max(corner - y, y - 1 + corner, 0)
        if dx * dx + dy * dy > corner * corner:
            return 255, 255, 255
        for left, top, bar in ((0.2, 0.55, (122, 158, 126)), (0.43, 0.38, (200, 132, 60)),
                               (0.66, 0.2, (255, 255, 255))):
            if left <= x < left + 0.15 and top <= y < 0.8:
                return bar
        return 31, 78, 95

    def pixel(x, y):
        samples = [colour((x + (i + 0.5) / 4) / side, (y + (j + 0.5) / 4) / side)
                   for i in range(4) for j in range(4)]
        return bytes(sum(channel) // len(samples) for channel in zip(*samples))

    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data)))

    rows = b"".join(b"\0" + b"".join(pixel(x, y) for x in range(side)) for y in range(side))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">2I5B", side, side, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def picture(relationship_id, size_emu):
    drawing = SCHEMAS + "drawingml/2006/"
    return run("", "<w:noProof/>", inside=(
        f'<w:drawing><wp:inline distT="0" distB="0" distL="0" distR="0"><wp:extent cx="{size_emu}" '
        f'cy="{size_emu}"/><wp:effectExtent l="0" t="0" r="0" b="0"/><wp:docPr id="1" '
        'name="Picture 1" descr="Logo"/><wp:cNvGraphicFramePr><a:graphicFrameLocks '
        f'xmlns:a="{drawing}main" noChangeAspect="1"/></wp:cNvGraphicFramePr><a:graphic '
        f'xmlns:a="{drawing}main"><a:graphicData uri="{drawing}picture"><pic:pic '
        f'xmlns:pic="{drawing}picture"><pic:nvPicPr><pic:cNvPr id="1" name="Logo.png"/>'
        f'<pic:cNvPicPr/></pic:nvPicPr><pic:blipFill><a:blip r:embed="{relationship_id}"/>'
        '<a:stretch><a:fillRect/></a:stretch></pic:blipFill><pic:spPr><a:xfrm><a:off x="0" y="0"/>'
        f'<a:ext cx="{size_emu}" cy="{size_emu}"/></a:xfrm><a:prstGeom prst="rect"><a:avLst/>'
        "</a:prstGeom></pic:spPr></pic:pic></a:graphicData></a:graphic></wp:inline></w:drawing>"))


def text_box(content, width_pt, height_pt):
    """A text box at the right margin, in the modern form and in the one for old readers.

    It is placed by the column: "margin" comes out as the edge of the page in a .doc.
    """
    width, height = width_pt * 12700, height_pt * 12700
    modern = (
        '<w:drawing><wp:anchor distT="0" distB="0" distL="114300" distR="114300" simplePos="0" '
        'relativeHeight="251659264" behindDoc="0" locked="0" layoutInCell="1" allowOverlap="1" '
        'wp14:anchorId="5B1C7A20" wp14:editId="21D94E6F"><wp:simplePos x="0" y="0"/>'
        '<wp:positionH relativeFrom="column"><wp:align>right</wp:align></wp:positionH>'
        '<wp:positionV relativeFrom="paragraph"><wp:posOffset>-63500</wp:posOffset></wp:positionV>'
        f'<wp:extent cx="{width}" cy="{height}"/><wp:effectExtent l="0" t="0" r="0" b="0"/>'
        '<wp:wrapNone/><wp:docPr id="2" name="Text Box 2"/><wp:cNvGraphicFramePr/>'
        f'<a:graphic xmlns:a="{SCHEMAS}drawingml/2006/main"><a:graphicData '
        f'uri="{OFFICE}word/2010/wordprocessingShape"><wps:wsp><wps:cNvSpPr txBox="1"/><wps:spPr>'
        f'<a:xfrm><a:off x="0" y="0"/><a:ext cx="{width}" cy="{height}"/></a:xfrm>'
        '<a:prstGeom prst="rect"><a:avLst/></a:prstGeom><a:noFill/><a:ln w="6350"><a:noFill/></a:ln>'
        f'</wps:spPr><wps:txbx><w:txbxContent>{content}</w:txbxContent></wps:txbx>'
        '<wps:bodyPr rot="0" vert="horz" wrap="square" lIns="0" tIns="0" rIns="0" bIns="0" '
        'anchor="t" anchorCtr="0"><a:noAutofit/></wps:bodyPr></wps:wsp></a:graphicData></a:graphic>'
        "</wp:anchor></w:drawing>")
    old = (
        '<w:pict><v:shapetype id="_x0000_t202" coordsize="21600,21600" o:spt="202" '
        'path="m,l,21600r21600,l21600,xe"><v:stroke joinstyle="miter"/>'
        '<v:path gradientshapeok="t" o:connecttype="rect"/></v:shapetype>'
        '<v:shape id="Text Box 2" o:spid="_x0000_s2049" type="#_x0000_t202" '
        f'style="position:absolute;margin-left:0;margin-top:-5pt;width:{width_pt}pt;'
        f'height:{height_pt}pt;z-index:251659264;mso-position-horizontal:right;'
        'mso-position-horizontal-relative:text" filled="f" stroked="f">'
        f'<v:textbox inset="0,0,0,0"><w:txbxContent>{content}</w:txbxContent></v:textbox>'
        '<w10:wrap anchorx="text"/></v:shape></w:pict>')
    return run("", "<w:noProof/>", inside=(
        f'<mc:AlternateContent><mc:Choice Requires="wps">{modern}</mc:Choice>'
        f"<mc:Fallback>{old}</mc:Fallback></mc:AlternateContent>"))


# --- packages -------------------------------------------------------------------------------------

def relationships(entries):
    """`entries`: id → (type, target); a target with a scheme is external."""
    return (f'{DECLARATION}<Relationships xmlns="{SCHEMAS}package/2006/relationships">' + "".join(
        f'<Relationship Id="{id}" Type="{type if ":" in type else RELATIONSHIP + type}" '
        f'Target="{escape(target)}"' + (' TargetMode="External"' if ":" in target else "") + "/>"
        for id, (type, target) in entries.items()) + "</Relationships>")


def write_template(name, title, pages, document, parts, links):
    """`parts`: id → (relationship type, file below word/, content); `links`: id → URI.

    A part may bring relationships of its own: (type, file, content, {id: (type, target)}).
    """
    has_notes = any(part[0] == "footnotes" for part in parts.values())
    parts = {
        **parts,
        "rId90": ("styles", "styles.xml", WordParts.styles()),
        "rId91": ("settings", "settings.xml", WordParts.settings(RSIDS, has_notes)),
        "rId92": ("webSettings", "webSettings.xml", WordParts.web_settings()),
        "rId93": ("fontTable", "fontTable.xml", WordParts.font_table()),
        "rId94": ("theme", "theme/theme1.xml", WordParts.theme()),
    }
    overrides = {"/word/document.xml": OFFICE_TYPE + "wordprocessingml.template.main+xml"}
    files = {"word/_rels/document.xml.rels": relationships({
        **{id: (part[0], part[1]) for id, part in parts.items() if part[0] != "image"},
        **{id: ("hyperlink", uri) for id, uri in links.items()}})}
    for type, file, content, *own in parts.values():
        files["word/" + file] = content
        if own:
            files[f"word/_rels/{file}.rels"] = relationships(own[0])
        if type == "theme":
            overrides["/word/" + file] = OFFICE_TYPE + "theme+xml"
        elif type != "image":
            overrides["/word/" + file] = OFFICE_TYPE + f"wordprocessingml.{type}+xml"
    files["docProps/core.xml"] = WordParts.core_properties(title)
    files["docProps/app.xml"] = WordParts.app_properties(pages)
    overrides["/docProps/core.xml"] = "application/vnd.openxmlformats-package.core-properties+xml"
    overrides["/docProps/app.xml"] = OFFICE_TYPE + "extended-properties+xml"
    types = (f'{DECLARATION}<Types xmlns="{SCHEMAS}package/2006/content-types">'
             '<Default Extension="png" ContentType="image/png"/><Default Extension="rels" '
             'ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
             '<Default Extension="xml" ContentType="application/xml"/>' + "".join(
                 f'<Override PartName="{part}" ContentType="{type}"/>'
                 for part, type in overrides.items()) + "</Types>")
    package = relationships({
        "rId1": ("officeDocument", "word/document.xml"),
        "rId2": (SCHEMAS + "package/2006/relationships/metadata/core-properties",
                 "docProps/core.xml"),
        "rId3": ("extended-properties", "docProps/app.xml")})
    with zipfile.ZipFile(pathlib.Path(__file__).with_name(name), "w") as archive:
        for file, content in {"[Content_Types].xml": types, "_rels/.rels": package,
                              "word/document.xml": document, **files}.items():
            entry = zipfile.ZipInfo(file)  # 1980-01-01
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 0
            archive.writestr(entry, content, compresslevel=6)


def root(name, content):
    return f"{DECLARATION}<w:{name} {NAMESPACES}>{content}</w:{name}>"


def section(references, first_page=True):
    return ("<w:sectPr>" + "".join(
        f'<w:{kind}Reference w:type="{page}" r:id="{id}"/>' for kind, page, id in references)
        + '<w:pgSz w:w="11906" w:h="16838"/><w:pgMar w:top="1440" w:right="1440" w:bottom="1304" '
        'w:left="1440" w:header="680" w:footer="567" w:gutter="0"/><w:cols w:space="708"/>'
        + ("<w:titlePg/>" if first_page else "") + '<w:docGrid w:linePitch="360"/></w:sectPr>')


RULE = ('<w:pBdr><w:bottom w:val="single" w:sz="12" w:space="6" w:color="1F4E5F"/></w:pBdr>')
RULE_ABOVE = '<w:pBdr><w:top w:val="single" w:sz="4" w:space="6" w:color="BFD0D6"/></w:pBdr>'


def page_numbers(pages):
    return ["Page ", field("PAGE", "1"), " of ", field("NUMPAGES", str(pages))]


def first_header():
    box = "".join((
        paragraph("LetterheadDetails", revised("<", "branch", ">", properties="<w:b/>"),
                  run(" office", "<w:b/>"), more='<w:jc w:val="right"/>'),
        paragraph("LetterheadDetails", "8 Tannery Row, Melbury ML4 2QT",
                  more='<w:jc w:val="right"/>'),
        paragraph("LetterheadDetails", "Direct line ", proofed("<", "ownerphone", ">"),
                  more='<w:jc w:val="right"/>'),
        paragraph("LetterheadDetails", "www.larkfield.example", more='<w:jc w:val="right"/>')))
    return root("hdr", paragraph("Letterhead", text_box(box, 170, 50), picture("rId1", 457200),
                                 "  Larkfield Interiors", more=RULE))


# --- the letter -----------------------------------------------------------------------------------

def letter_body():
    def item(number):
        return [paragraph("TableText", str(number)),
                paragraph("TableText", revised("<item", f"{number}>")),
                paragraph("TableFigures", revised("<", f"qty{number}", ">")),
                paragraph("TableFigures", bookmarked("<amount", f"{number}>", f"Amount{number}",
                                                     10 + number))]

    def sum_row(caption, *tag):
        return [(3, paragraph("TableFigures", caption)), paragraph("TableFigures", *tag)]

    offer = table("OfferTable", [567, 5386, 1247, 1826], [
        [paragraph("TableText", "No."), paragraph("TableText", "Description"),
         paragraph("TableFigures", "Quantity"), paragraph("TableFigures", "Amount")],
        item(1), item(2), item(3),
        sum_row("Net total", revised("<sub", "total>")),
        sum_row("VAT at 20 %", "<vat>"),
        sum_row("Total", half_bold("<to", "tal>"))], last=True)

    signature = table("TableNormal", [4513, 4513], [
        [paragraph("Address", "Yours sincerely,", more='<w:spacing w:before="120" w:after="720"/>')
         + paragraph("Address", proofed("<", "ownername", ">"))
         + paragraph("Address", "Larkfield Interiors, <branch>"),
         paragraph("Address", "Accepted for ", revised("<Company", " Name", ">"), ":",
                   more='<w:spacing w:before="120" w:after="720"/>')
         + paragraph("Address", "Date, signature",
                     more='<w:pBdr><w:top w:val="single" w:sz="4" w:space="4" w:color="7F7F7F"/>'
                     "</w:pBdr>")]], header=False)

    footnote_mark = run("", '<w:rStyle w:val="FootnoteReference"/>',
                        inside='<w:footnoteReference w:id="1"/>')
    return "".join((
        paragraph("Address", revised("<", "title", "> <", "firstname", ">"), run(" "),
                  proofed("<", "lastname", ">"), "<suffix>", more='<w:spacing w:before="360"/>'),
        paragraph("Address", "<jobtitle>"),
        paragraph("Address", bookmarked("<Comp", "any Name>", "Addressee", 1)),
        paragraph("Address", revised("<addr", "ess>")),
        paragraph("Address", "<city>"),
        paragraph("Address", proofed("<", "postcode", ">")),
        paragraph("ReferenceLine", "Date:", TAB, "<letterdate>",
                  more='<w:spacing w:before="320"/>'),
        paragraph("ReferenceLine", "Our reference:", TAB, revised("<refer", "ence", ">")),
        paragraph("ReferenceLine", "Your contact:", TAB,
                  content_control("Owner", 1432751904, proofed("<", "ownername", ">")), ", ",
                  link("rId20", revised("<owner", "email>",
                                        properties='<w:rStyle w:val="Hyperlink"/>'))),
        paragraph("Heading1", "Our offer for ", content_control("Project", 986120457,
                                                              run("<project>"))),
        paragraph("", "Dear ", revised("<ti", "tle", "> <lastname>"), ","),
        paragraph("", "Thank you for the friendly welcome on ", half_bold("<meeting", "date>"),
                  ", when you showed us around the rooms of ",
                  bookmarked("<Company", " Name>", "Rooms", 2),
                  ". We enjoyed hearing what you and your colleagues have in mind for ",
                  "<project>", ", and it is a pleasure to send you the offer that we promised."),
        paragraph("", "We have kept to the outline of our meeting: pieces that last, made of "
                  "materials that can be repaired, and fitted while your business goes on. Our "
                  "joiners will carry out the noisy work outside your opening hours, and one and "
                  "the same person, ", proofed("<", "ownername", ">"),
                  ", will look after you from the first drawing to the last screw."),
        paragraph("", "All prices below include delivery to ", "<city>", " and fitting. They are ",
                  "good until ", revised("<", "valid", "until", ">"),
                  "; drawings and samples are free of charge whatever you decide.", footnote_mark),
        paragraph("Heading2", "What we offer"),
        offer,
        paragraph("", "The total of ", proofed("<", "total", ">"),
                  " falls due in two halves, the first with your order and the second when "
                  "everything is in its place.", more='<w:spacing w:before="160"/>'),
        paragraph("Heading2", "How we go on from here"),
        paragraph("", "If the offer suits you, ", "<firstname>", ", three small steps are all "
                  "that is left to do:"),
        bullet("Sign the second copy of this letter and send it to our ", "<branch>",
               " office, or reply to ", link("rId20", run("<owneremail>",
                                                        '<w:rStyle w:val="Hyperlink"/>')),
               " with the reference ", revised("<", "reference>"), "."),
        bullet("Choose the colours from the samples that come with this letter. ",
               deleted("A deposit of <deposit> is due then. ", 101),
               "We keep your choice open until work begins."),
        bullet("Tell us which week suits you best. We need ", run("<delivery"), inserted("time", 102),
               run(">"), " from your order to the first day on site."),
        paragraph("Heading2", "What you can rely on"),
        paragraph("", "We give a guarantee of ten years on everything that our joiners make, and "
                  "of two years on fabrics and fittings. Should anything need attention, somebody "
                  "from our ", "<branch>", " office will be with you within two working days. You "
                  "find our terms of delivery and the list of the materials that we use on the "
                  "back of this letter; we are happy to explain either of them."),
        paragraph("", "Nothing in the offer is fixed until you say so. Should the plans for ",
                  revised("<pro", "ject>"), " change in the meantime, or should the board of ",
                  "<Company Name>", " wish to compare alternatives, we are glad to come by once "
                  "more. A call to ", "<ownerphone>", " is enough."),
        paragraph("", "We look forward to working with you."),
        signature,
        paragraph("", run("Enclosed: second copy, samples, drawings for ", "<w:i/>"),
                  run("<project>", "<w:i/>"), more='<w:spacing w:before="360"/>')))


def letter():
    footnote = ('<w:footnote w:id="1">' + paragraph(
        "FootnoteText", run("", '<w:rStyle w:val="FootnoteReference"/>', inside="<w:footnoteRef/>"),
        " Our general terms apply; they came with the letter of ", revised("<meet", "ingdate>"),
        " and can be had from ", "<ownername>", " at any time.") + "</w:footnote>")
    later_header = root("hdr", paragraph(
        "LetterheadDetails", run("Larkfield Interiors", '<w:b/><w:color w:val="1F4E5F"/>'), TAB, TAB,
        proofed("<", "companyname", ">"), ", our reference ", "<reference>",
        more=RULE + '<w:spacing w:after="360"/>'))

    def footer():
        return root("ftr", paragraph(
            "Footer", "Larkfield Interiors Ltd · Registered in Melbury, no. 0417 229", TAB, TAB,
            revised("<refer", "ence>"), " · ", *page_numbers(2), more=RULE_ABOVE))

    body = letter_body() + section([
        ("header", "default", "rId11"), ("header", "first", "rId10"),
        ("footer", "default", "rId13"), ("footer", "first", "rId12")])
    write_template("Letter.dotx", "Offer letter", 2, root("document", f"<w:body>{body}</w:body>"), {
        "rId10": ("header", "header1.xml", first_header(), {"rId1": ("image", "media/image1.png")}),
        "rId11": ("header", "header2.xml", later_header),
        "rId12": ("footer", "footer1.xml", footer()),
        "rId13": ("footer", "footer2.xml", footer()),
        "rId14": ("footnotes", "footnotes.xml", WordParts.notes("footnote", footnote)),
        "rId15": ("endnotes", "endnotes.xml", WordParts.notes("endnote")),
        "rId16": ("numbering", "numbering.xml", WordParts.numbering()),
        "rId17": ("image", "media/image1.png", logo_png()),
    }, {"rId20": "mailto:letters@larkfield.example"})


# --- the seminar ----------------------------------------------------------------------------------

def seminar():
    blank = [paragraph("TableText")] * 4
    attendees = table("OfferTable", [2722, 2608, 1928, 1768], [
        [paragraph("TableText", revised("<attendees", "_name", ">")),
         paragraph("TableText", "<attendees_company>"),
         paragraph("TableText", proofed("<", "attendees_town", ">")),
         paragraph("TableText", bookmarked("<attendees", "_workshop>", "Workshop", 3))], blank])
    facts = table("TableNormal", [1701, 7325], [
        [paragraph("TableText", run("When", "<w:b/>")),
         paragraph("TableText", revised("<seminar", "date>"), ", ", "<seminartime>")],
        [paragraph("TableText", run("Where", "<w:b/>")),
         paragraph("TableText", "<venue>")],
        [paragraph("TableText", run("Speaker", "<w:b/>")),
         paragraph("TableText", proofed("<", "speaker", ">"))],
        [paragraph("TableText", run("Fee", "<w:b/>")),
         paragraph("TableText", "<fee>", " a person, lunch included")]], header=False)
    body = "".join((
        paragraph("Address", revised("<first", "name", "> <lastname>"),
                  more='<w:spacing w:before="360"/>'),
        paragraph("Address", "<Company Name>"),
        paragraph("Address", "<address>", more='<w:spacing w:after="320"/>'),
        paragraph("Heading1", "Your places at “", revised("<seminar", "name>"), "”"),
        paragraph("", "Dear ", proofed("<", "firstname", ">"), ","),
        paragraph("", "Thank you for your booking. We have reserved places for everybody whom you "
                  "named, and we look forward to meeting your group."),
        facts,
        paragraph("Heading2", "Who takes part"),
        attendees,
        paragraph("", "Please tell us until ", half_bold("<reply", "by>"), " if somebody else "
                  "comes in place of one of your guests. The doors open half an hour before we "
                  "begin; coffee will be ready.", more='<w:spacing w:before="200"/>'),
        paragraph("", "Kind regards,", more='<w:keepNext/><w:spacing w:after="600"/>'),
        paragraph("Address", "<ownername>"),
        paragraph("Address", "Larkfield Interiors, <branch>")))
    footer = root("ftr", paragraph("Footer", "Booking ", "<reference>", TAB, TAB,
                                   *page_numbers(1), more=RULE_ABOVE))
    body += section([("header", "default", "rId10"), ("footer", "default", "rId11")], False)
    write_template("Seminar.dotx", "Seminar confirmation", 1,
                   root("document", f"<w:body>{body}</w:body>"), {
        "rId10": ("header", "header1.xml", first_header(), {"rId1": ("image", "media/image1.png")}),
        "rId11": ("footer", "footer1.xml", footer),
        "rId12": ("image", "media/image1.png", logo_png()),
    }, {})


# --- the quotes -----------------------------------------------------------------------------------

def quote(name, lines):
    """`lines` is where the lines of the quote go."""
    sums = table("TableNormal", [6973, 2053], [
        [paragraph("TableFigures", "Net total"), paragraph("TableFigures", revised("<net", "total>"))],
        [paragraph("TableFigures", "VAT at 20 %"), paragraph("TableFigures", "<vat>")],
        [paragraph("TableFigures", run("Total", "<w:b/>")),
         paragraph("TableFigures", half_bold("<to", "tal>"))]], header=False)
    body = "".join((
        paragraph("Address", "<firstname>", " ", revised("<last", "name>"),
                  more='<w:spacing w:before="360"/>'),
        paragraph("Address", proofed("<", "companyname", ">")),
        paragraph("Address", "<address>", more='<w:spacing w:after="320"/>'),
        paragraph("Heading1", "Quote ", revised("<quote", "number>"), " for ", "<project>"),
        paragraph("", "Dear ", "<firstname>", " ", bookmarked("<last", "name>", "Salutation", 1), ","),
        paragraph("", "Thank you for your enquiry of ", half_bold("<enquiry", "date>"),
                  ". This is what we propose, room by room; delivery and fitting are included."),
        lines,
        paragraph("", "", more='<w:spacing w:after="0"/>'),
        sums,
        paragraph("", "The quote is good until ", revised("<", "valid", "until", ">"),
                  ". An order by e-mail, with our number, is all that we need to begin.",
                  more='<w:spacing w:before="240"/>'),
        paragraph("", "Kind regards,", more='<w:keepNext/><w:spacing w:after="600"/>'),
        paragraph("Address", proofed("<", "ownername", ">")),
        paragraph("Address", "Larkfield Interiors, <branch>")))
    footer = root("ftr", paragraph("Footer", "Quote ", revised("<quote", "number>"), TAB, TAB,
                                   *page_numbers(1), more=RULE_ABOVE))
    body += section([("header", "default", "rId10"), ("footer", "default", "rId11")], False)
    write_template(name, "Quote", 1, root("document", f"<w:body>{body}</w:body>"), {
        "rId10": ("header", "header1.xml", first_header(), {"rId1": ("image", "media/image1.png")}),
        "rId11": ("footer", "footer1.xml", footer),
        "rId12": ("image", "media/image1.png", logo_png()),
    }, {})


def quotes():
    """The lines in a table of the template, or in an HTML template beside it."""
    styles = ["TableText", "TableText", "TableFigures", "TableFigures", "TableFigures"]
    captions = ["Room", "Description", "Quantity", "Unit price", "Amount"]
    quote("QuoteTable.dotx", table("OfferTable", [1474, 3799, 1077, 1304, 1372], [
        [paragraph(style, caption) for style, caption in zip(styles, captions)],
        [paragraph(style) for style in styles]]))
    quote("QuoteHtml.dotx", paragraph("", revised("<html", "table>"), "QuoteTable.htm"))


if __name__ == "__main__":
    letter()
    seminar()
    quotes()

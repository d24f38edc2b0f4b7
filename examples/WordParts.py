"""The parts that every document of a word processor carries beside its text, in their usual size."""

DECLARATION = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\r\n'

SCHEMAS = "http://schemas.openxmlformats.org/"
OFFICE = "http://schemas.microsoft.com/office/"

# The namespaces that the word processor declares on every root, used or not.
NAMESPACES = " ".join(
    f'xmlns:{prefix}="{uri}"'
    for prefix, uri in {
        "wpc": OFFICE + "word/2010/wordprocessingCanvas",
        "mc": SCHEMAS + "markup-compatibility/2006",
        "o": "urn:schemas-microsoft-com:office:office",
        "r": SCHEMAS + "officeDocument/2006/relationships",
        "m": SCHEMAS + "officeDocument/2006/math",
        "v": "urn:schemas-microsoft-com:vml",
        "wp14": OFFICE + "word/2010/wordprocessingDrawing",
        "wp": SCHEMAS + "drawingml/2006/wordprocessingDrawing",
        "w10": "urn:schemas-microsoft-com:office:word",
        "w": SCHEMAS + "wordprocessingml/2006/main",
        "w14": OFFICE + "word/2010/wordml",
        "w15": OFFICE + "word/2012/wordml",
        "wpg": OFFICE + "word/2010/wordprocessingGroup",
        "wps": OFFICE + "word/2010/wordprocessingShape",
    }.items()
) + ' mc:Ignorable="w14 w15 wp14"'


def latent_styles():
    """What the word processor says of the styles that it knows and the document does not use."""

    def exception(name, priority=None, hidden=True, gallery=False):
        return (
            f'<w:lsdException w:name="{name}"'
            + (' w:semiHidden="1"' if hidden else "")
            + (f' w:uiPriority="{priority}"' if priority is not None else "")
            + (' w:unhideWhenUsed="1"' if hidden else "")
            + (' w:qFormat="1"' if gallery else "")
            + "/>"
        )

    rows = [exception("Normal", 0, False, True), exception("heading 1", 9, False, True)]
    rows += [exception(f"heading {i}", 9, True, True) for i in range(2, 10)]
    rows += [exception(f"index {i}") for i in range(1, 10)]
    rows += [exception(f"toc {i}", 39) for i in range(1, 10)]
    for name in (
        "Normal Indent|footnote text|annotation text|header|footer|index heading|table of figures|"
        "envelope address|envelope return|footnote reference|annotation reference|line number|"
        "page number|endnote reference|endnote text|table of authorities|macro|toa heading|List|"
        "List Bullet|List Number|List 2|List 3|List 4|List 5|List Bullet 2|List Bullet 3|"
        "List Bullet 4|List Bullet 5|List Number 2|List Number 3|List Number 4|List Number 5|Closing|"
        "Signature|Body Text|Body Text Indent|List Continue|List Continue 2|List Continue 3|"
        "List Continue 4|List Continue 5|Message Header|Salutation|Date|Body Text First Indent|"
        "Body Text First Indent 2|Note Heading|Body Text 2|Body Text 3|Body Text Indent 2|"
        "Body Text Indent 3|Block Text|Hyperlink|FollowedHyperlink|Document Map|Plain Text|"
        "E-mail Signature|HTML Top of Form|HTML Bottom of Form|Normal (Web)|HTML Acronym|"
        "HTML Address|HTML Cite|HTML Code|HTML Definition|HTML Keyboard|HTML Preformatted|"
        "HTML Sample|HTML Typewriter|HTML Variable|Normal Table|annotation subject|No List|"
        "Outline List 1|Outline List 2|Outline List 3|Balloon Text|Table Theme|"
        "Table Contemporary|Table Elegant|Table Professional|Table Subtle 1|Table Subtle 2|"
        "Table Web 1|Table Web 2|Table Web 3"
    ).split("|"):
        rows.append(exception(name))
    for kind, count in {"Simple": 3, "Classic": 4, "Colorful": 3, "Columns": 5, "Grid": 8,
                        "List": 8, "3D effects": 3}.items():
        rows += [exception(f"Table {kind} {i}") for i in range(1, count + 1)]
    rows.append(exception("caption", 35, True, True))
    for name, priority in {"Title": 10, "Subtitle": 11, "Strong": 22, "Emphasis": 20,
                           "No Spacing": 1, "List Paragraph": 34, "Quote": 29, "Intense Quote": 30,
                           "Subtle Emphasis": 19, "Intense Emphasis": 21, "Subtle Reference": 31,
                           "Intense Reference": 32, "Book Title": 33}.items():
        rows.append(exception(name, priority, False, True))
    rows.append(exception("Table Grid", 39, False))
    rows.append(exception("Placeholder Text", None, True))
    kinds = {"Light Shading": 60, "Light List": 61, "Light Grid": 62, "Medium Shading 1": 63,
             "Medium Shading 2": 64, "Medium List 1": 65, "Medium List 2": 66, "Medium Grid 1": 67,
             "Medium Grid 2": 68, "Medium Grid 3": 69, "Dark List": 70, "Colorful Shading": 71,
             "Colorful List": 72, "Colorful Grid": 73}
    newer = {"1 Light": 46, "2": 47, "3": 48, "4": 49, "5 Dark": 50, "6 Colorful": 51,
             "7 Colorful": 52}
    for accent in [""] + [f" Accent {i}" for i in range(1, 7)]:
        rows += [exception(name + accent, priority, False) for name, priority in kinds.items()]
    rows += [exception("Bibliography", 37), exception("TOC Heading", 39, True, True)]
    rows += [exception(f"Plain Table {i}", 40 + i, False) for i in range(1, 6)]
    rows.append(exception("Grid Table Light", 40, False))
    for family in ("Grid Table", "List Table"):
        for accent in [""] + [f" Accent {i}" for i in range(1, 7)]:
            rows += [exception(f"{family} {kind}{accent}", p, False) for kind, p in newer.items()]
    return (
        '<w:latentStyles w:defLockedState="0" w:defUIPriority="99" w:defSemiHidden="0" '
        f'w:defUnhideWhenUsed="0" w:defQFormat="0" w:count="{len(rows)}">'
        + "".join(rows) + "</w:latentStyles>"
    )


def style(kind, name, *, id=None, default=False, based_on="", next="", link="", priority=None,
          gallery=False, body=""):
    """One style; `body` is its pPr, rPr, tblPr and what follows."""
    id = id or name.replace(" ", "")
    builtin = "" if priority is not None or default else ' w:customStyle="1"'
    return (
        f'<w:style w:type="{kind}"' + (' w:default="1"' if default else builtin)
        + f' w:styleId="{id}"><w:name w:val="{name}"/>'
        + (f'<w:basedOn w:val="{based_on}"/>' if based_on else "")
        + (f'<w:next w:val="{next}"/>' if next else "")
        + (f'<w:link w:val="{link}"/>' if link else "")
        + (f'<w:uiPriority w:val="{priority}"/>' if priority is not None else "")
        + ('<w:semiHidden/><w:unhideWhenUsed/>' if default and name != "Normal" else "")
        + ("<w:qFormat/>" if gallery else "")
        + body + "</w:style>"
    )


def heading(level, size):
    space = 240 if level == 1 else 160
    text = (f'<w:rPr><w:rFonts w:asciiTheme="majorHAnsi" w:eastAsiaTheme="majorEastAsia" '
            f'w:hAnsiTheme="majorHAnsi" w:cstheme="majorBidi"/><w:b/><w:bCs/>'
            f'<w:color w:val="1F4E5F" w:themeColor="accent1"/>'
            f'<w:sz w:val="{size}"/><w:szCs w:val="{size}"/></w:rPr>')
    paragraph = (f'<w:pPr><w:keepNext/><w:keepLines/><w:spacing w:before="{space}" w:after="80"/>'
                 f'<w:outlineLvl w:val="{level - 1}"/></w:pPr>')
    name = f"heading {level}"
    return style("paragraph", name, id=f"Heading{level}", based_on="Normal", next="Normal",
                 link=f"Heading{level}Char", priority=9, gallery=True, body=paragraph + text) + \
        style("character", f"Heading {level} Char", id=f"Heading{level}Char",
              based_on="DefaultParagraphFont", link=f"Heading{level}", body=text)


def table_border(names, size, color):
    return "".join(f'<w:{n} w:val="single" w:sz="{size}" w:space="0" w:color="{color}"/>'
                   for n in names)


def styles():
    tabs = '<w:tabs><w:tab w:val="center" w:pos="4513"/><w:tab w:val="right" w:pos="9026"/></w:tabs>'
    plain = '<w:spacing w:after="0" w:line="240" w:lineRule="auto"/>'
    small = '<w:rPr><w:color w:val="595959"/><w:sz w:val="16"/><w:szCs w:val="16"/></w:rPr>'
    cell_margins = ('<w:tblCellMar><w:top w:w="{0}" w:type="dxa"/><w:left w:w="108" w:type="dxa"/>'
                    '<w:bottom w:w="{0}" w:type="dxa"/><w:right w:w="108" w:type="dxa"/>'
                    '</w:tblCellMar>')
    all_sides = ("top", "left", "bottom", "right", "insideH", "insideV")
    parts = [
        '<w:docDefaults><w:rPrDefault><w:rPr><w:rFonts w:asciiTheme="minorHAnsi" '
        'w:eastAsiaTheme="minorHAnsi" w:hAnsiTheme="minorHAnsi" w:cstheme="minorBidi"/>'
        '<w:sz w:val="22"/><w:szCs w:val="22"/>'
        '<w:lang w:val="en-GB" w:eastAsia="en-US" w:bidi="ar-SA"/></w:rPr></w:rPrDefault>'
        '<w:pPrDefault><w:pPr><w:spacing w:after="140" w:line="264" w:lineRule="auto"/></w:pPr>'
        "</w:pPrDefault></w:docDefaults>",
        latent_styles(),
        style("paragraph", "Normal", default=True, gallery=True),
        "".join(heading(level, size) for level, size in enumerate((28, 24, 22), 1)),
        style("character", "Default Paragraph Font", default=True, priority=1),
        style("table", "Normal Table", id="TableNormal", default=True, priority=99,
              body='<w:tblPr><w:tblInd w:w="0" w:type="dxa"/>' + cell_margins.format(0)
              + "</w:tblPr>"),
        style("numbering", "No List", default=True, priority=99),
        style("paragraph", "header", id="Header", based_on="Normal", link="HeaderChar", priority=99,
              body=f"<w:pPr>{tabs}{plain}</w:pPr>"),
        style("character", "Header Char", based_on="DefaultParagraphFont", link="Header"),
        style("paragraph", "footer", id="Footer", based_on="Normal", link="FooterChar", priority=99,
              body=f"<w:pPr>{tabs}{plain}</w:pPr>" + small),
        style("character", "Footer Char", based_on="DefaultParagraphFont", link="Footer",
              body=small),
        style("paragraph", "Letterhead", based_on="Header",
              body='<w:rPr><w:b/><w:color w:val="1F4E5F" w:themeColor="accent1"/>'
              '<w:sz w:val="36"/><w:szCs w:val="36"/></w:rPr>'),
        style("paragraph", "Letterhead Details", based_on="Header", body=small),
        style("paragraph", "Address", based_on="Normal", gallery=True,
              body=f"<w:pPr>{plain}</w:pPr>"),
        style("paragraph", "Reference Line", based_on="Address",
              body='<w:pPr><w:tabs><w:tab w:val="left" w:pos="1701"/></w:tabs></w:pPr>'),
        style("paragraph", "Table Text", based_on="Normal",
              body=f"<w:pPr>{plain}</w:pPr>"),
        style("paragraph", "Table Figures", based_on="TableText",
              body='<w:pPr><w:jc w:val="right"/></w:pPr>'),
        style("paragraph", "List Paragraph", based_on="Normal", priority=34, gallery=True,
              body='<w:pPr><w:ind w:left="720"/><w:contextualSpacing/></w:pPr>'),
        style("paragraph", "footnote text", id="FootnoteText", based_on="Normal", priority=99,
              link="FootnoteTextChar",
              body=f'<w:pPr>{plain}</w:pPr><w:rPr><w:sz w:val="18"/><w:szCs w:val="18"/></w:rPr>'),
        style("character", "Footnote Text Char", based_on="DefaultParagraphFont",
              link="FootnoteText", body='<w:rPr><w:sz w:val="18"/><w:szCs w:val="18"/></w:rPr>'),
        style("character", "footnote reference", id="FootnoteReference",
              based_on="DefaultParagraphFont", priority=99,
              body='<w:rPr><w:vertAlign w:val="superscript"/></w:rPr>'),
        style("character", "Hyperlink", based_on="DefaultParagraphFont", priority=99,
              body='<w:rPr><w:color w:val="1F6F8B" w:themeColor="hyperlink"/><w:u w:val="single"/>'
              "</w:rPr>"),
        style("character", "Placeholder Text", based_on="DefaultParagraphFont", priority=99,
              body='<w:rPr><w:color w:val="808080"/></w:rPr>'),
        style("table", "Table Grid", based_on="TableNormal", priority=39,
              body=f"<w:pPr>{plain}</w:pPr><w:tblPr><w:tblBorders>"
              + table_border(all_sides, 4, "auto") + "</w:tblBorders></w:tblPr>"),
        style("table", "Offer Table", based_on="TableNormal",
              body=f"<w:pPr>{plain}</w:pPr><w:tblPr><w:tblStyleRowBandSize w:val=\"1\"/>"
              "<w:tblBorders>" + table_border(("top",), 8, "1F4E5F")
              + table_border(("bottom",), 8, "1F4E5F") + table_border(("insideH",), 4, "BFD0D6")
              + "</w:tblBorders>" + cell_margins.format(60) + "</w:tblPr>"
              '<w:tblStylePr w:type="firstRow"><w:rPr><w:b/><w:color w:val="FFFFFF" '
              'w:themeColor="background1"/></w:rPr><w:tblPr/><w:tcPr>'
              '<w:shd w:val="clear" w:color="auto" w:fill="1F4E5F" w:themeFill="accent1"/></w:tcPr>'
              '</w:tblStylePr><w:tblStylePr w:type="lastRow"><w:rPr><w:b/></w:rPr><w:tblPr/>'
              '<w:tcPr><w:shd w:val="clear" w:color="auto" w:fill="E4EDF0"/></w:tcPr>'
              "</w:tblStylePr>"),
    ]
    return f"{DECLARATION}<w:styles {NAMESPACES}>" + "".join(parts) + "</w:styles>"


def theme():
    colors = {"dk2": "2F3B40", "lt2": "EEF3F5", "accent1": "1F4E5F", "accent2": "C8843C",
              "accent3": "7A9E7E", "accent4": "8A6C8E", "accent5": "4F8FA8", "accent6": "A65D57",
              "hlink": "1F6F8B", "folHlink": "6B5B7B"}
    scripts = {"Jpan": "ＭＳ 明朝", "Hang": "맑은 고딕", "Hans": "宋体", "Hant": "新細明體",
               "Arab": "Arial", "Hebr": "Arial", "Thai": "Cordia New", "Ethi": "Nyala",
               "Beng": "Vrinda", "Gujr": "Shruti", "Khmr": "DaunPenh", "Knda": "Tunga",
               "Guru": "Raavi", "Cans": "Euphemia", "Cher": "Plantagenet Cherokee",
               "Yiii": "Microsoft Yi Baiti", "Tibt": "Microsoft Himalaya", "Thaa": "MV Boli",
               "Deva": "Mangal", "Telu": "Gautami", "Taml": "Latha", "Syrc": "Estrangelo Edessa",
               "Orya": "Kalinga", "Mlym": "Kartika", "Laoo": "DokChampa", "Sinh": "Iskoola Pota",
               "Mong": "Mongolian Baiti", "Viet": "Arial", "Uigh": "Microsoft Uighur",
               "Geor": "Sylfaen"}

    def fonts(kind):
        return (f'<a:{kind}Font><a:latin typeface="Calibri" panose="020F0502020204030204"/>'
                '<a:ea typeface=""/><a:cs typeface=""/>'
                + "".join(f'<a:font script="{s}" typeface="{f}"/>' for s, f in scripts.items())
                + f"</a:{kind}Font>")

    def stop(position, *changes):
        inner = "".join(f'<a:{name} val="{value}"/>' for name, value in changes)
        return f'<a:gs pos="{position}"><a:schemeClr val="phClr">{inner}</a:schemeClr></a:gs>'

    def gradient(*stops):
        return ('<a:gradFill rotWithShape="1"><a:gsLst>' + "".join(stops)
                + '</a:gsLst><a:lin ang="5400000" scaled="0"/></a:gradFill>')

    solid = '<a:solidFill><a:schemeClr val="phClr"/></a:solidFill>'
    light = gradient(stop(0, ("lumMod", 110000), ("satMod", 105000), ("tint", 67000)),
                     stop(50000, ("lumMod", 105000), ("satMod", 103000), ("tint", 73000)),
                     stop(100000, ("lumMod", 105000), ("satMod", 109000), ("tint", 81000)))
    strong = gradient(stop(0, ("satMod", 103000), ("lumMod", 102000), ("tint", 94000)),
                      stop(50000, ("satMod", 110000), ("lumMod", 100000), ("shade", 100000)),
                      stop(100000, ("lumMod", 99000), ("satMod", 120000), ("shade", 78000)))
    page = gradient(stop(0, ("tint", 93000), ("satMod", 150000), ("shade", 98000)),
                    stop(50000, ("tint", 98000), ("satMod", 130000), ("shade", 90000)),
                    stop(100000, ("shade", 63000), ("satMod", 120000)))
    lines = "".join(f'<a:ln w="{w}" cap="flat" cmpd="sng" algn="ctr">{solid}'
                    '<a:prstDash val="solid"/><a:miter lim="800000"/></a:ln>'
                    for w in (6350, 12700, 19050))
    shadow = ('<a:effectStyle><a:effectLst><a:outerShdw blurRad="57150" dist="19050" dir="5400000" '
              'algn="ctr" rotWithShape="0"><a:srgbClr val="000000"><a:alpha val="63000"/>'
              "</a:srgbClr></a:outerShdw></a:effectLst></a:effectStyle>")
    flat = "<a:effectStyle><a:effectLst/></a:effectStyle>"
    return (
        f'{DECLARATION}<a:theme xmlns:a="{SCHEMAS}drawingml/2006/main" name="Letter">'
        '<a:themeElements><a:clrScheme name="Letter">'
        '<a:dk1><a:sysClr val="windowText" lastClr="000000"/></a:dk1>'
        '<a:lt1><a:sysClr val="window" lastClr="FFFFFF"/></a:lt1>'
        + "".join(f'<a:{n}><a:srgbClr val="{v}"/></a:{n}>' for n, v in colors.items())
        + f'</a:clrScheme><a:fontScheme name="Letter">{fonts("major")}{fonts("minor")}'
        f'</a:fontScheme><a:fmtScheme name="Letter"><a:fillStyleLst>{solid}{light}{strong}'
        f"</a:fillStyleLst><a:lnStyleLst>{lines}</a:lnStyleLst>"
        f"<a:effectStyleLst>{flat}{flat}{shadow}</a:effectStyleLst><a:bgFillStyleLst>{solid}"
        '<a:solidFill><a:schemeClr val="phClr"><a:tint val="95000"/><a:satMod val="170000"/>'
        f"</a:schemeClr></a:solidFill>{page}</a:bgFillStyleLst></a:fmtScheme></a:themeElements>"
        "<a:objectDefaults/><a:extraClrSchemeLst/></a:theme>"
    )


def settings(rsids, has_notes):
    notes = ""
    if has_notes:
        notes = "".join(f'<w:{kind}Pr><w:{kind} w:id="-1"/><w:{kind} w:id="0"/></w:{kind}Pr>'
                        for kind in ("footnote", "endnote"))
    compatibility = {"compatibilityMode": 15, "overrideTableStyleFontSizeAndJustification": 1,
                     "enableOpenTypeFeatures": 1, "doNotFlipMirrorIndents": 1,
                     "differentiateMultirowTableHeaders": 1}
    return (
        f'{DECLARATION}<w:settings {NAMESPACES}><w:zoom w:percent="100"/>'
        '<w:proofState w:spelling="clean" w:grammar="clean"/><w:revisionView w:markup="0"/>'
        '<w:defaultTabStop w:val="720"/><w:characterSpacingControl w:val="doNotCompress"/>'
        f"{notes}<w:compat>"
        + "".join(f'<w:compatSetting w:name="{n}" w:uri="{OFFICE}word" w:val="{v}"/>'
                  for n, v in compatibility.items())
        + f'</w:compat><w:rsids><w:rsidRoot w:val="{rsids[0]}"/>'
        + "".join(f'<w:rsid w:val="{rsid}"/>' for rsid in sorted(rsids))
        + '</w:rsids><m:mathPr><m:mathFont m:val="Cambria Math"/><m:brkBin m:val="before"/>'
        '<m:brkBinSub m:val="--"/><m:smallFrac m:val="0"/><m:dispDef/><m:lMargin m:val="0"/>'
        '<m:rMargin m:val="0"/><m:defJc m:val="centerGroup"/><m:wrapIndent m:val="1440"/>'
        '<m:intLim m:val="subSup"/><m:naryLim m:val="undOvr"/></m:mathPr>'
        '<w:themeFontLang w:val="en-GB"/><w:clrSchemeMapping w:bg1="light1" w:t1="dark1" '
        'w:bg2="light2" w:t2="dark2" w:accent1="accent1" w:accent2="accent2" w:accent3="accent3" '
        'w:accent4="accent4" w:accent5="accent5" w:accent6="accent6" w:hyperlink="hyperlink" '
        'w:followedHyperlink="followedHyperlink"/><w:shapeDefaults>'
        '<o:shapedefaults v:ext="edit" spidmax="2050"/><o:shapelayout v:ext="edit">'
        '<o:idmap v:ext="edit" data="1"/></o:shapelayout></w:shapeDefaults>'
        '<w:decimalSymbol w:val="."/><w:listSeparator w:val=","/></w:settings>'
    )


def font_table():
    fonts = {
        "Calibri": ("020F0502020204030204", "swiss", "E4002EFF", "C200247B"),
        "Times New Roman": ("02020603050405020304", "roman", "E0002EFF", "C000785B"),
        "Symbol": ("05050102010706020507", "roman", "00000000", "10000000"),
        "Courier New": ("02070309020205020404", "modern", "E0002EFF", "C0007843"),
    }
    return f"{DECLARATION}<w:fonts {NAMESPACES}>" + "".join(
        f'<w:font w:name="{name}"><w:panose1 w:val="{panose}"/>'
        f'<w:charset w:val="{"02" if name == "Symbol" else "00"}"/><w:family w:val="{family}"/>'
        f'<w:pitch w:val="{"fixed" if family == "modern" else "variable"}"/>'
        f'<w:sig w:usb0="{usb}" w:usb1="{csb}" w:usb2="00000009" w:usb3="00000000" '
        'w:csb0="000001FF" w:csb1="00000000"/></w:font>'
        for name, (panose, family, usb, csb) in fonts.items()
    ) + "</w:fonts>"


def web_settings():
    return (f"{DECLARATION}<w:webSettings {NAMESPACES}><w:optimizeForBrowser/><w:allowPNG/>"
            "</w:webSettings>")


def numbering():
    levels = "".join(
        f'<w:lvl w:ilvl="{i}"><w:start w:val="1"/><w:numFmt w:val="bullet"/>'
        f'<w:lvlText w:val="{"•" if i % 2 == 0 else "–"}"/><w:lvlJc w:val="left"/>'
        f'<w:pPr><w:ind w:left="{360 * (i + 1)}" w:hanging="360"/></w:pPr></w:lvl>'
        for i in range(9))
    return (f'{DECLARATION}<w:numbering {NAMESPACES}><w:abstractNum w:abstractNumId="0">'
            '<w:nsid w:val="3A5C1E70"/><w:multiLevelType w:val="hybridMultilevel"/>'
            f'<w:tmpl w:val="7B2E40D8"/>{levels}</w:abstractNum>'
            '<w:num w:numId="1"><w:abstractNumId w:val="0"/></w:num></w:numbering>')


def core_properties(title):
    return (
        f'{DECLARATION}<cp:coreProperties xmlns:cp="{SCHEMAS}package/2006/metadata/core-properties" '
        'xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:dcterms="http://purl.org/dc/terms/" '
        'xmlns:dcmitype="http://purl.org/dc/dcmitype/" '
        f'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><dc:title>{title}</dc:title>'
        "<dc:subject/><dc:creator>Kestrelon</dc:creator><cp:keywords/><dc:description/>"
        "<cp:lastModifiedBy>Kestrelon</cp:lastModifiedBy><cp:revision>7</cp:revision>"
        '<dcterms:created xsi:type="dcterms:W3CDTF">2017-01-09T09:12:00Z</dcterms:created>'
        '<dcterms:modified xsi:type="dcterms:W3CDTF">2017-03-02T15:40:00Z</dcterms:modified>'
        "</cp:coreProperties>"
    )


def app_properties(pages):
    return (
        f'{DECLARATION}<Properties xmlns="{SCHEMAS}officeDocument/2006/extended-properties" '
        f'xmlns:vt="{SCHEMAS}officeDocument/2006/docPropsVTypes"><Template>Normal</Template>'
        f"<TotalTime>34</TotalTime><Pages>{pages}</Pages><Application>Microsoft Office Word"
        "</Application><DocSecurity>0</DocSecurity><ScaleCrop>false</ScaleCrop>"
        "<Company>Larkfield Interiors</Company><LinksUpToDate>false</LinksUpToDate>"
        "<SharedDoc>false</SharedDoc><HyperlinksChanged>false</HyperlinksChanged>"
        "<AppVersion>16.0000</AppVersion></Properties>"
    )


def notes(kind, own=""):
    """footnotes or endnotes: the two separators that every document has, then its own."""
    separators = "".join(
        f'<w:{kind} w:type="{name}" w:id="{id}"><w:p><w:pPr><w:spacing w:after="0" w:line="240" '
        f'w:lineRule="auto"/></w:pPr><w:r><w:{name}/></w:r></w:p></w:{kind}>'
        for id, name in ((-1, "separator"), (0, "continuationSeparator")))
    return f"{DECLARATION}<w:{kind}s {NAMESPACES}>{separators}{own}</w:{kind}s>"

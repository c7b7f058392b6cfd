#!/usr/bin/env python3
"""Writes the seed corpus of each fuzz target: small valid inputs of its format.

Run from anywhere; the seeds land beside this script, one folder per target.
  make-seeds.py [--art FILE.tart] [--registry STORE.sqlite]
adds a whole collection file (as artpack writes it) and a registry store file
(as an application leaves it, its write-ahead log checkpointed) to the seeds.
"""
import os
import struct
import sys

here = os.path.dirname(os.path.abspath(__file__))


def seed(target, name, data):
    folder = os.path.join(here, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as out:
        out.write(data if isinstance(data, bytes) else data.encode())


# The break window's records: header words magic|version, type, sequence, argument.
MAGIC = 0x4B425700 | 2
TEXT = 512


def record(kind, sequence, argument, body=b""):
    return struct.pack("<IIII", MAGIC, kind, sequence, argument) + body


def text(value):
    raw = value.encode()[: TEXT - 1]
    return raw + b"\0" * (TEXT - len(raw))


seed("break_wire", "finish", record(0x401, 1, 0))
seed("break_wire", "spin-step", record(0x402, 2, 0))
seed("break_wire", "title", record(0x404, 3, 0, text("Fitting the model")))
seed("break_wire", "gauge-value", record(0x405, 4, 0, struct.pack("<f", 0.25)))
seed("break_wire", "gauge-range", record(0x406, 5, 0, struct.pack("<ff", 0.0, 1.0)))
seed("break_wire", "show", record(0x407, 6, 1))
seed("break_wire", "start", record(0x408, 7, 1000, struct.pack("<iiiiII", 10, 20, 800, 600, 5, 0)
                                   + text("Fitting") + text("Do you really want to stop?")
                                   + text("Workbench") + text("Stop")))
seed("break_wire", "acknowledge", record(0x481, 7, 0))
seed("break_wire", "gauge-width", record(0x483, 8, 537))

seed("limit_expression", "range", "> 2.5 and < 10")
seed("limit_expression", "single", "<= -1e3")
seed("limit_expression", "or", "< 0 or > 100")
seed("limit_expression", "number", "6.02214076e23")
seed("limit_expression", "hex", "0x1p-3")

seed("ini_section", "syslog.ini", "; Settings of the syslog client\n[SysLogInfo]\nVersion=1\n\n"
     "[Server]\nHost=127.0.0.1\nPort=514\nProtocol=UDP\n\n[Contexts]\nImport=3\nExport=5\n")
seed("ini_section", "comments.ini", "# a person's notes\n[Section A]\nkey = value with spaces\n"
     "empty=\n; between\n[Section B]\nnumber=42\nlist=a;b;c\n")
seed("ini_section", "no-section.ini", "loose=1\n[Only]\nk=v\r\nwindows=line\r\n")

seed("xml_section", "settings.xml", '<?xml version="1.0" encoding="UTF-8"?>\n<Tessmark>\n'
     '\t<AppSettings>\n\t\t<Version>1.0.0.0</Version>\n\t\t<Last_x0020_file>/srv/data/wheat.tsx</Last_x0020_file>\n'
     '\t\t<Window left="10" top="20">maximised</Window>\n\t</AppSettings>\n\t<item_x0020_1><x>1</x></item_x0020_1>\n'
     '\t<item_x0020_2><x>2</x></item_x0020_2>\n</Tessmark>\n')
seed("xml_section", "favourites.xml", '<?xml version="1.0"?>\n<Tessmark><Favourites><Item Type="1" Name="Wheat">'
     '<Path>/srv/data/wheat.tsx</Path></Item><Separator/></Favourites></Tessmark>\n')
seed("xml_section", "options.xml", '<Tessmark><!-- options --><Page Name="General"><Option Type="Bool" '
     'Key="ShowGrid">1</Option><Option Type="Float" Key="Tolerance" Min="0" Max="1">0.5</Option></Page>'
     '<![CDATA[ raw ]]></Tessmark>')

# Favourites files: as the writer leaves them, and the older forms the reader still takes.
seed("favourites_file", "favourites.xml", '<?xml version="1.0"?>\n<Tessmark><Favourites AppName="Workbench" Version="1.0">'
     '<FavouriteItem Name="Spectra" Type="FavouritesFolder" TreatAsItem="0" EmptyFolderText="Drop files here" '
     'DefaultItemType="FileItem" _IndentLevel="0" _Style="3"/>'
     '<FavouriteItem Name="Wheat" Type="FileItem" File="/srv/data/wheat.tsx" _IndentLevel="1" _Style="0"/>'
     '<FavouriteItem Name="Fit" Type="CommandItem" CommandID="32771" _IndentLevel="1" _Style="1"/>'
     '<FavouriteItem Name="Rye" Type="FileItem" File="/srv/data/rye.tsx" _IndentLevel="0" _Style="0"/>'
     '</Favourites></Tessmark>\n')
seed("favourites_file", "older-forms.xml", '<Tessmark><Favourites>'
     '<FavouriteItem Type="FileItem" Label="Gone" IndentLevel="0"><ItemData Name="Gone" File="/g"/></FavouriteItem>'
     '<FavouriteItem Name="A" Type="FavouritesFolder" _IndentLevel="0" Bold="1" Expanded="1"/>'
     '<FavouriteItem Name="B" Type="Unknown" _IndentLevel="3"/>'
     '<FavouriteItem Name=" C " Type="CommandItem" _IndentLevel="2"/>'
     '</Favourites><GlobalFavourites/></Tessmark>')

# An art description of release 1.42: odd first byte = the description alone.
description = ("22 serialization::archive 7 0 0 0 0 2 0 0 0 400 300 64 80 0 0 10 Lena Marsh 9 1882-1961 "
               "6 p-lena 0 0 2 0 0 0 9 Salt Flat 5 pic01 8 Low Tide 5 pic02 300 400 0 0 10 Otto Brenn 0  0  "
               "1 0 7 Harbour 5 pic03\n")
seed("read_art_info", "description-1.42", b"\x01" + description.encode())
seed("read_art_info", "description-empty", b"\x01" + b"22 serialization::archive 7 0 0 0 0 0 0\n")
options = dict(zip(sys.argv[1::2], sys.argv[2::2]))
if "--art" in options:
    # A whole small collection file: even first byte.
    with open(options["--art"], "rb") as art:
        seed("read_art_info", "collection.tart", b"\x00" + art.read())
if "--registry" in options:
    with open(options["--registry"], "rb") as store:
        seed("registry_store", "workbench.sqlite", store.read())

# The tab-indented tree text: plain, irregular, indented first line, empty lines.
seed("tree_text", "plain", "Fruit\r\n\tApple\r\n\t\tCox\r\n\tPear\r\nVegetables\r\n")
seed("tree_text", "deep-jump", "a\r\n\t\t\tb\r\n\t\tc\r\n\td\r\ne\r\n")
seed("tree_text", "indented-first", "\t\ta\n\t\t\tb\n\tc\n\t\td\n")
seed("tree_text", "empty-lines", "a\n\n\tb\r\n\r\n\t\n\t\tc")
# Option descriptions: the workbench's own, and small ones with every type, broken entries and defaults.
with open(os.path.join(here, "..", "..", "resources", "xml", "WorkbenchOptions.xml")) as shipped:
    seed("option_description", "workbench.xml", shipped.read())
seed("option_description", "types.xml", "<Tessmark><PropertyCategory ShortDescription='C'>"
     + "".join("<PropertyItem Section='S' Key='%s' Type='%s' Default='1'/>" % (t, t) for t in
               ["Number", "Float", "ColorPopup", "YesNo", "TrueFalse", "EnabledDisbled", "EnabledDisabled",
                "String", "FolderPath", "FilePath"])
     + "<PropertyItem Section='S' Key='L' Type='CustomList' Default='b'><CustomList><Item Value='a' Name='A'/>"
       "<Item Value='b' Name='B'/><Item Value='c'/></CustomList></PropertyItem></PropertyCategory></Tessmark>")
seed("option_description", "broken.xml", "<Tessmark><PropertyCategory><PropertyItem Section='S' Key='K' Type='Number'/>"
     "</PropertyCategory><PropertyCategory ShortDescription=''><PropertyItem Key='K' Type='Number'/>"
     "<PropertyItem Section='S' Key='K' Type='Number'><Validator Type='Number' Min='x'/></PropertyItem>"
     "<PropertyItem Section='S' Key='K' Type='Float' Default='abc'><Validator Type='Float' Max='-1e40'/>"
     "</PropertyItem></PropertyCategory></Tessmark>")
seed("option_description", "shared-keys.xml", "<Tessmark><PropertyCategory ShortDescription='C'>"
     "<PropertyItem Section='S' Key='K' Type='Number' Default='5'/><PropertyItem Section='S' Key='K' Type='String' Default='12'/>"
     "<PropertyItem Section='T' Key='K' Type='CustomList'><CustomList><Item Value='12' Name='x'/></CustomList></PropertyItem>"
     "</PropertyCategory><S K='7'/></Tessmark>")
# Audit trails: empty, with a session and its events, and a hand-edited one.
seed("audit_trail", "empty", '<?xml version="1.0" encoding="UTF-8"?><AuditTrail Project="Study"/>')
seed("audit_trail", "session",
     '<?xml version="1.0" encoding="UTF-8"?>\n<?xml-stylesheet type="text/xsl" href="audit_trail.xsl"?>\n'
     '<AuditTrail Project="Wine">\n  <Session Start="2026-11-24T20:40:00Z" User="ann" ExtendedUserInfo="QA">\n'
     '    <Event Time="2026-11-24T20:41:00Z" User="ann" ExtendedUserInfo="QA"><Title>Model fitted</Title>'
     '<Detail>3 components</Detail></Event>\n  </Session>\n</AuditTrail>\n')
seed("audit_trail", "no-trail", "<Other><Session/></Other>")
# Map-id tables of help files: a byte count, then pairs of map id and string offset.
def id_table(pairs, rest=b""):
    body = b"".join(struct.pack("<II", i, o) for i, o in pairs) + rest
    return struct.pack("<I", len(body)) + body


seed("chm_id_table", "two-pairs", id_table([(1001, 1), (4000000000, 12)]))
seed("chm_id_table", "empty", id_table([]))
seed("chm_id_table", "rest-of-4", id_table([(7, 0)], b"\0\0\0\0"))
seed("chm_id_table", "longer-than-stream", struct.pack("<I", 64) + struct.pack("<II", 1, 1))

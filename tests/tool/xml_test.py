"""The XML that appletctl makes: the portable description, and that all of it is well-formed.

    appletctl_xml_test.py APPLETCTL
"""

import json
import os
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as xml

APPLETCTL = sys.argv[1]


def run(*words):
    return subprocess.run([APPLETCTL, *words], stdout=subprocess.PIPE, check=False).stdout.decode()


def tag_of(element):
    """The name of an element without its namespace."""
    return element.tag.rpartition("}")[2]


class Documents(unittest.TestCase):
    def test_portable_description(self):
        nodes = {}
        for node in xml.fromstring(run("xml", "--portable")):
            self.assertNotIn(node.get("Name"), nodes)
            nodes[node.get("Name")] = [("", tag_of(node))] + [(tag_of(child), child.text) for child in node]
        named = {text for elements in nodes.values() for tag, text in elements if tag.startswith("p")}
        self.assertEqual(named | {"Root"}, set(nodes), "what is named is there, and something leads to each node")
        for name, tag, text in (
                ("FG_DIGIO_OUTPUT", "Min", "-1"),
                ("FG_DIGIO_OUTPUT_Reg", "Sign", "Signed"),
                ("FG_WIDTH_Reg", "Sign", "Unsigned"),
                ("FG_WIDTH_Reg", "Cachable", "NoCache"),
                ("FG_SYSTEMMONITOR_FPGA_DNA_Reg", "Length", "8"),
                ("FG_SYSTEMMONITOR_FPGA_DNA_Reg", "AccessMode", "RO"),
                ("FG_SHAFTENCODERON_Reg", "AccessMode", "RW"),  # read-only now, not for ever
                ("FG_LINEPERIODE", "Unit", "µs"),
                ("FG_LINEPERIODE", "Inc", "0.008"),
                ("FG_LINEPERIODE", "Streamable", "Yes"),
                ("FG_LINEORDER", "Streamable", "No"),
                ("FG_LINETRIGGERDELAY", "DisplayName", "Delay->Exsync"),
                ("Width", "pValue", "FG_WIDTH_Reg"),
                ("Width", "pAlias", "FG_WIDTH"),
                ("TriggerSoftware", "", "Command"),
                ("LUTEnable", "", "Boolean"),
                ("StandardFeatures_Category", "pFeature", "PixelFormat")):
            self.assertIn((tag, text), nodes[name], name)

    def test_is_well_formed(self):
        with tempfile.TemporaryDirectory() as folder:
            os.chdir(folder)
            with open("odd.scenario", "w", encoding="utf-8") as scenario:
                scenario.write('section "Odd <&> words"\nexpect exit 0 load "<&>.mcf"\n')
            run("timing", "--svg", "timing.svg")
            run("lut", "plot", "lut.svg", "FG_LUT_SAVE_FILE=<&>")
            run("run", "odd.scenario", "--junit", "report.xml")
            for name in ("timing.svg", "lut.svg", "report.xml"):
                xml.parse(name)
            os.chdir("/")
        self.assertEqual(json.loads(run("--json", "xml"))["document"], run("xml"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

import sys
import unittest

from driver import ProgramTest


class AccessTest(ProgramTest):
    @unittest.skipIf(sys.platform == "darwin", "there it depends on what the user granted")
    def test_a_system_without_the_gate_grants_everything(self):
        self.assertEqual(self.document("access"), {"granted": True, "state": "on", "steps": []})
        self.assertIn("no Full Disk Access to grant", self.succeed("access").out)


if __name__ == "__main__":
    unittest.main()

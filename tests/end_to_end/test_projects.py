import os
import pathlib
import unittest

from driver import LATER, ProgramTest, tree_of


class ProjectsTest(ProgramTest):
    def project(self, name, *made):
        self.make(f"Code/{name}/package.json")
        self.make(f"Code/{name}/src/main.js", 2_000)
        for path in made:
            self.make(f"Code/{name}/{path}", 400_000)
        if "node_modules/.package-lock.json" in made:
            self.make(f"Code/{name}/node_modules/.package-lock.json", text='{"packages": {"node_modules/left-pad": {}}}')

    def test_a_preview_names_the_build_folders_of_untouched_projects(self):
        self.project("old", "node_modules/.package-lock.json", "node_modules/left-pad/package.json")
        self.project("by hand", "node_modules/mine.js")
        self.project("fresh", "node_modules/.package-lock.json")
        soon = self.home.stat().st_mtime + (LATER - 2) * 86_400
        os.utime(self.home / "Code/fresh/src/main.js", (soon, soon))
        rule = self.document("rule", "add", "Builds", "--projects", self.home / "Code", "--kinds", "nodeModules",
                             "pycache", "--untouched-days", "30", "--delete")
        self.assertEqual(rule["target"]["kinds"], ["nodeModules", "pycache"])
        before = tree_of(self.home / "Code")

        plan = self.document("preview", "Builds", days_ahead=LATER)
        (item,) = plan["items"]
        folder = self.home / "Code/old"
        self.assertEqual(item["path"], str(folder / "node_modules"))
        self.assertEqual((item["project"]["folder"], item["project"]["kind"]), (str(folder), "nodeModules"))
        self.assertEqual(item["ageDate"], item["project"]["newestSource"])
        blocks = sum(file.lstat().st_blocks * 512 for file in pathlib.Path(item["path"]).rglob("*") if file.is_file())
        self.assertEqual((item["bytes"], item["fileCount"], plan["totalBytes"]), (blocks, 2, blocks))
        self.assertEqual([(each["path"], each["reason"]) for each in plan["skipped"]],
                         [(str(self.home / "Code/by hand/node_modules"), "noToolSignature")])
        shown = self.succeed("preview", "Builds", days_ahead=LATER).out
        for words in ("Would be deleted for good", "Node packages, ~/Code/old untouched since",
                      "1 item that does not look like a tool made it", "~/Code/by hand/node_modules"):
            self.assertIn(words, shown)
        self.assertEqual(tree_of(self.home / "Code"), before)

        self.assertTrue(self.document("preview", "Builds", "--approve", days_ahead=LATER)["approved"])
        self.assertEqual(self.document("preview", "Builds")["items"], [])


if __name__ == "__main__":
    unittest.main()

#include "rules/ArtifactFiles.h"

namespace vostrel::artifacts {

Names environmentFiles() {
    return joined(
        {{"pyvenv.cfg", ".gitignore", "CACHEDIR.TAG", ".lock", "lib64", "include/", "include/python3.[0-9]/",
          "include/python3.[0-9][0-9]/"},
         below({"bin"}, {"python",       "python3",      "python3.[0-9]",    "python3.[0-9][0-9]", "pip",
                         "pip3",         "pip3.[0-9]",   "pip3.[0-9][0-9]",  "pip-3.[0-9]",        "pip-3.[0-9][0-9]",
                         "activate",     "activate.bat", "activate.csh",     "activate.fish",      "activate.nu",
                         "activate.ps1", "Activate.ps1", "activate_this.py", "deactivate.bat",     "pydoc.bat"}),
         below({"lib/python3.[0-9]/site-packages", "lib/python3.[0-9][0-9]/site-packages"},
               {"_virtualenv.pth", "_virtualenv.py", "distutils-precedence.pth",
                "__pycache__/_virtualenv.cpython-3*.pyc"})});
}

}  // namespace vostrel::artifacts

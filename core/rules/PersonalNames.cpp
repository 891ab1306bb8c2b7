#include "rules/PersonalNames.h"

namespace vostrel::artifacts {

const Names documents{
    "*.doc",     "*.docx",   "*.docm",    "*.odt",  "*.ods",      "*.odp",     "*.odg",      "*.rtf",       "*.pages",
    "*.numbers", "*.xls",    "*.xlsx",    "*.xlsm", "*.ppt",      "*.pptx",    "*.tex",      "*.bib",       "*.epub",
    "*.mobi",    "*.djvu",   "*.scriv",   "*.vsd",  "*.vsdx",     "*.xmind",   "*.sketch",   "*.fig",       "*.xd",
    "*.psd",     "*.ai",     "*.indd",    "*.xcf",  "*.kra",      "*.afphoto", "*.afdesign", "*.blend",     "*.stl",
    "*.3mf",     "*.step",   "*.dwg",     "*.dxf",  "*.skp",      "*.ipynb",   "*.pst",      "*.mbox",      "*.kdbx",
    "*.kdb",     "*.heic",   "*.heif",    "*.cr2",  "*.cr3",      "*.nef",     "*.arw",      "*.dng",       "*.orf",
    "*.rw2",     "*.raf",    "*.mov",     "*.avi",  "*.mkv",      "*.m4v",     "*.wmv",      "*.aiff",      "*.logicx",
    "*.band",    "*.als",    "*.dmg",     "*.iso",  "*.appimage", "*.ova",     "*.vmdk",     "*.qcow2",     "*.vdi",
    "*.rar",     "*.bak",    "*.unity",   "*.gpx",  "*.ipa",      "*.aab",     "*.msi",      "*.xcarchive", "id_rsa",
    "id_dsa",    "id_ecdsa", "id_ed25519"};

const Names belongings =
    joined({documents, {"*.pdf",  "*.csv",  "*.tsv",   "*.eml",       "*.ics",    "*.vcf",     "*.jpg",      "*.jpeg",
                        "*.tif",  "*.tiff", "*.raw",   "*.mp3",       "*.m4a",    "*.wav",     "*.flac",     "*.ogg",
                        "*.mp4",  "*.zip",  "*.7z",    "*.tar",       "*.tgz",    "*.tar.*",   "*.exe",      "*.msi",
                        "*.pkg",  "*.deb",  "*.rpm",   "mapping.txt", "*.sqlite", "*.sqlite3", "*.sqlitedb", "*.db",
                        "*.mdf",  "*.mts",  "*.accdb", "*.dat",       "*.sav",    "*.sql",     "*.dump",     ".env",
                        ".env.*", "*.env",  "*.pem",   "*.key",       "*.p12",    "*.pfx",     "*.keystore", "*.jks",
                        "*.gpg",  "*.asc",  "*.sh",    "*.bash",      "*.zsh",    "*.fish",    "*.bat",      "*.ps1",
                        "*.py",   "*.rb",   "*.php",   "*.pl",        "*.lua",    "*.go",      "*.cs",       "*.scala",
                        "*.clj",  "*.hs",   "*.tsx",   "*.jsx",       "*.svelte", "*.astro",   "*.scss",     "*.sass",
                        "*.less", "CNAME"}});

const Names pictures{"*.png", "*.gif", "*.webp", "*.avif", "*.bmp", "*.svg", "*.ico", "*.jp2", "*.jxl"};

const Names secrets{".env", ".env.local", "*.p12", "*.pfx", "*.jks", "*.keystore", "*.gpg"};

const Names writings{"*.md", "*.markdown", "*.mdx", "*.txt", "*.rst", "*.org", "*.adoc"};
const Names byHand{"BARE",   "*.json", "*.yaml", "*.yml",   "*.toml", "*.html", "*.htm",
                   "*.js",   "*.mjs",  "*.css",  "*.xml",   "*.ini",  "*.cfg",  "*.properties",
                   "*.conf", "*.log",  "*.jar",  "*.class", "*.h",    "*.gz"};
const Names sources{"*.swift", "*.c", "*.cc", "*.cpp", "*.cxx", "*.m", "*.mm", "*.java", "*.kt", "*.rs", "*.ts"};

}  // namespace vostrel::artifacts

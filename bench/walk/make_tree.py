#!/usr/bin/env python3
"""Makes a tree of files like those of a home folder, the same for the same arguments.

usage: make_tree.py FOLDER [--files 400000] [--folders N] [--seed 1]

Folders lie up to twelve deep, one for every twelve files unless told otherwise; a few are very wide. One name in a
hundred is a symbolic link and about as many are further names of a hard-linked file. Most files are holes and one in
five holds one block, so that 400,000 files take a few hundred megabytes of disk.
"""

import argparse
import os
import random
import sys

SYLLABLES = "ba be da de fi fo ga go ka ki la lo ma me ni no pa po ra re sa so ta te va vi za zo".split()
ENDINGS = (".txt", ".json", ".h", ".o", ".png", ".jpg", ".plist", ".log", ".db", ".pdf", ".lock", "")
ODD_NAMES = ("Pr\u00e9sentation", "Pre\u0301sentation", "\u65e5\u672c\u8a9e", "\u041f\u0430\u043f\u043a\u0430", "Stra\u00dfe")
DEEPEST = 12
WIDE_FOLDERS = 3
ONE_BLOCK = b"x" * 4096


def word(dice):
    if dice.random() < 0.03:
        return dice.choice(ODD_NAMES)
    return "".join(dice.choice(SYLLABLES) for _ in range(dice.randint(2, 5)))


def make_folders(root, count, dice):
    """The paths of so many folders below the root, most of them near those made last, as programs leave them."""
    folders = [(root, 0)]
    while len(folders) <= count:
        near = folders[-dice.randint(1, min(len(folders), 40))]
        parent, depth = near if dice.random() < 0.55 else dice.choice(folders)
        if depth + 1 >= DEEPEST:
            continue
        path = f"{parent}/{word(dice)}{len(folders)}"
        os.mkdir(path)
        folders.append((path, depth + 1))
    return [path for path, _ in folders]


def make_file(path, dice):
    descriptor = os.open(path, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o644)
    size = min(int(dice.lognormvariate(8, 1.5)), 1 << 20)
    if dice.random() < 0.2:
        os.write(descriptor, ONE_BLOCK[:size])
    os.ftruncate(descriptor, size)
    os.close(descriptor)


def folders_of_files(folders, count, dice):
    """In which folder each file lies: some fill one wide folder, the others crowd in some places and not in others."""
    crowded = [min(dice.paretovariate(1.1), 400) for _ in folders]
    wide = dice.choices(folders, k=WIDE_FOLDERS)
    chosen = [folder for folder in wide for _ in range(count // 50)]
    chosen += dice.choices(folders, weights=crowded, k=count - len(chosen))
    return sorted(chosen)


def make_tree(root, files, folder_count, seed):
    dice = random.Random(f"{seed}/{files}")
    os.makedirs(root)
    folders = make_folders(root, folder_count, dice)
    known = []
    for number, folder in enumerate(folders_of_files(folders, files, dice)):
        path = f"{folder}/{word(dice)}{number}{dice.choice(ENDINGS)}"
        kind = dice.random()
        if known and kind < 0.01:
            os.symlink(dice.choice(known), path)
        elif known and kind < 0.02:
            os.link(dice.choice(known), path)
        else:
            make_file(path, dice)
            if not known or dice.random() < 0.05:
                known.append(path)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder")
    parser.add_argument("--files", type=int, default=400_000)
    parser.add_argument("--folders", type=int)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    if os.path.lexists(options.folder):
        sys.exit(f"make_tree.py: {options.folder} exists already")
    folders = options.folders or max(1, options.files // 12)
    make_tree(options.folder.rstrip("/"), options.files, folders, options.seed)


if __name__ == "__main__":
    main()

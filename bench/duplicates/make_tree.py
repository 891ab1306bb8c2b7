#!/usr/bin/env python3
"""Makes a tree of files to look for duplicates in, the same for the same arguments, and notes the groups.

usage: make_tree.py FOLDER [--megabytes 3000] [--seed 1]

A bit over half of the bytes are large files of two to four copies; a quarter are pairs of one size and one beginning that
differ later: behind the first 64 KiB, in the middle, in their last byte or anywhere; the rest are files of one size that
differ from the start, small copies, unique files, and further names of files. FOLDER.groups holds, as JSON, the groups of
copies: of each copy the list of its names.
"""

import argparse
import json
import math
import os
import pathlib
import random

MEGABYTE = 1 << 20
FIRST_BLOCK = 65_536


class Tree:
    def __init__(self, root, seed):
        self.random = random.Random(f"duplicates {seed}")
        self.folders = [root]
        self.written = 0
        self.sizes = set()
        self.files = []
        self.groups = []
        root.mkdir(parents=True)
        for number in range(240):
            folder = self.random.choice(self.folders[-12:]) / f"folder {number}"
            folder = folder if len(folder.parts) - len(root.parts) < 9 else root / folder.name
            folder.mkdir()
            self.folders.append(folder)

    def size(self, least, most):
        """One that no other file has, small ones more often."""
        while True:
            size = int(math.exp(self.random.uniform(math.log(least), math.log(most))))
            if size not in self.sizes:
                self.sizes.add(size)
                return size

    def put(self, content):
        path = self.random.choice(self.folders) / f"file {len(self.files)}"
        path.write_bytes(content)
        self.written += len(content)
        self.files.append([str(path)])
        return self.files[-1]

    def put_copies(self, content, copies):
        self.groups.append([self.put(content) for _ in range(copies)])

    def put_pair(self, number, most):
        """Alike at the beginning and in size."""
        content = bytearray(self.random.randbytes(self.size(2 * FIRST_BLOCK, most)))
        self.put(content)
        last = len(content) - 1
        content[[FIRST_BLOCK, last // 2, last, self.random.randrange(FIRST_BLOCK, last)][number % 4]] ^= 0x55
        self.put(content)

    def fill(self, total):
        while self.written < total * 0.55:
            self.put_copies(self.random.randbytes(self.size(MEGABYTE, 64 * MEGABYTE)), self.random.choice([2, 2, 2, 3, 4]))
        pairs = 0
        while self.written < total * 0.80 or pairs < 60:
            self.put_pair(pairs, 16 * MEGABYTE if self.written < total * 0.80 else 4 * FIRST_BLOCK)
            pairs += 1
        for _ in range(400):
            size = self.size(4_096, 8 * FIRST_BLOCK)
            for _ in range(self.random.randint(2, 4)):
                self.put(self.random.randbytes(size))
        for _ in range(500):
            self.put_copies(self.random.randbytes(self.size(16, FIRST_BLOCK)), self.random.choice([2, 2, 3, 4, 5]))
        while self.written < total:
            self.put(self.random.randbytes(self.size(64, 4 * MEGABYTE)))
        for number in range(240):
            names = self.random.choice(self.files)
            path = self.random.choice(self.folders) / f"name {number}"
            os.link(names[0], path)
            names.append(str(path))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--megabytes", type=int, default=3_000)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    tree = Tree(options.folder, options.seed)
    tree.fill(options.megabytes * 1_000_000)
    groups = [[sorted(os.path.relpath(name, options.folder) for name in copy) for copy in group] for group in tree.groups]
    pathlib.Path(f"{options.folder}.groups").write_text(json.dumps(groups), encoding="utf-8")


if __name__ == "__main__":
    main()

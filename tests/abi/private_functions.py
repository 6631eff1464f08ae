#!/usr/bin/env python3
"""Finds private functions that a library shows although no host can call them.

    private_functions.py SOURCES LIBRARY...

clang tells which functions of the public headers are private, and nm which names the libraries show.
Virtual functions don't count, since derived classes of hosts inherit their tables, nor does what
inline code of a header calls. What is found here wants ZR_LOCAL.
"""
import json
import pathlib
import shlex
import subprocess
import sys


def output(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


def public_headers(sources):
    for path in sorted(sources.rglob("*.h")):
        name = path.relative_to(sources).as_posix()
        if "/private/" not in name and "/graph/layout/" not in name:
            yield name


def declarations(sources):
    """The syntax trees of all that the public headers declare in the namespace ZR."""
    text = "".join(f'#include "{name}"\n' for name in public_headers(sources))
    flags = shlex.split(output("pkg-config", "--cflags", "Qt5Widgets"))
    tree = output("clang++", "-std=c++17", "-fPIC", f"-I{sources}", *flags, "-fsyntax-only",
                  "-Xclang", "-ast-dump=json", "-Xclang", "-ast-dump-filter=ZR::", "-x", "c++", "-",
                  input=text)
    decoder = json.JSONDecoder()
    position = 0
    while position < len(tree):
        if tree[position].isspace():
            position += 1
            continue
        node, position = decoder.raw_decode(tree, position)
        yield node


def is_virtual(node):
    return node.get("virtual") or any(
        child.get("kind") in ("OverrideAttr", "FinalAttr") for child in node.get("inner", ()))


class Collector:
    def __init__(self):
        self.private = {}  # Mangled names by the compiler's number of the function.
        self.called = set()

    def visit(self, node, access):
        kind = node.get("kind", "")
        if kind == "MemberExpr":
            self.called.add(node.get("referencedMemberDecl"))
        elif kind == "DeclRefExpr":
            self.called.add(node["referencedDecl"]["id"])
        elif (kind in ("CXXMethodDecl", "CXXConstructorDecl") and access == "private"
              and not is_virtual(node)):
            self.private[node["id"]] = node.get("mangledName")
        within = "private" if node.get("tagUsed") == "class" else "public"
        for child in node.get("inner", ()):
            if child.get("kind") == "AccessSpecDecl":
                within = child["access"]
            else:
                self.visit(child, within if kind == "CXXRecordDecl" else access)


def shown(library):
    """What a library defines by itself: weak names are also made where they are used."""
    for line in output("nm", "--dynamic", "--defined-only", library).splitlines():
        _, kind, name = line.split()
        if kind == "T":
            yield name


def main():
    sources, libraries = pathlib.Path(sys.argv[1]), sys.argv[2:]
    collector = Collector()
    for node in declarations(sources):
        collector.visit(node, "public")
    if not collector.private:
        sys.exit("No private function at all was found")
    private = {name for number, name in collector.private.items()
               if number not in collector.called}
    exported = {name for library in libraries for name in shown(library)}
    found = sorted(private & exported)
    if found:
        print(output("c++filt", input="\n".join(found)))
        sys.exit("These are private, and shown all the same: see ZR_LOCAL")


main()

#!/usr/bin/env python3
"""Checks that every #include of the project's own headers points down the
layers (docs/architecture.md): a file may include its own layer and the layers
that LAYERS lists for it, nothing above and nothing beside.

Usage: check-includes.py [ROOT]      check ROOT (default: the repository)
       check-includes.py --self-test show that an upward include is refused
Exit status 0 when every include is allowed, 1 otherwise (each offending line
is printed as file:line: message)."""
import os
import re
import sys
import tempfile

# The one table of allowed directions: layer -> the layers it may include
# besides itself. A layer is the folder under src/ (or, for ui and dialogs,
# the sub-folder named in LAYER_OF).
LAYERS = {
    "core": [],
    "platform": ["core"],
    "support": ["core", "platform"],
    "driversupport": ["core", "platform", "support"],
    "thrift": ["core", "platform", "support", "driversupport"],
    "product": ["core", "platform", "support", "driversupport", "thrift"],
    "ui": ["core", "platform", "support"],
    "ui/scripted": ["core", "platform", "support", "ui"],
    "ui/terminal": ["core", "platform", "support", "ui"],
    "ui/win32": ["core", "platform", "support", "ui"],
    "dialogs/framework": ["core", "platform", "support", "driversupport", "ui"],
    "dialogs/driversupport": ["core", "platform", "support", "driversupport", "ui",
                              "dialogs/framework"],
    "dialogs/thrift": ["core", "platform", "support", "driversupport", "thrift", "ui",
                       "dialogs/framework", "dialogs/driversupport"],
    "dialogs/product": ["core", "platform", "support", "driversupport", "thrift", "product", "ui",
                        "dialogs/framework", "dialogs/driversupport", "dialogs/thrift"],
    "programs": ["core", "platform", "support", "driversupport", "thrift", "product", "ui",
                 "ui/scripted", "ui/terminal", "ui/win32", "dialogs/framework",
                 "dialogs/driversupport", "dialogs/thrift", "dialogs/product"],
}

# Tests may reach further than the code they test in one case: a dialog host
# is tested by showing the product's real dialogs on it, so the tests of the
# hosts may include the dialogs and the model under them.
HOST_TEST_EXTRA = ["driversupport", "thrift", "product", "dialogs/framework", "dialogs/driversupport",
                   "dialogs/thrift", "dialogs/product"]
TEST_LAYERS = {host: LAYERS[host] + HOST_TEST_EXTRA for host in ("ui/scripted", "ui/terminal", "ui/win32")}

# Sub-layers: the longest matching prefix of a path under src/ names its layer.
SUB_LAYERS = sorted((name for name in LAYERS if "/" in name), key=len, reverse=True)

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def layer_of(relative_path):
    """The layer of a path relative to src/ (or an include path), or None."""
    path = relative_path.replace("\\", "/")
    for sub in SUB_LAYERS:
        if path.startswith(sub + "/"):
            return sub
    top = path.split("/", 1)[0]
    return top if top in LAYERS else None


def check_file(path, own_layer, report, table=LAYERS):
    ok = True
    allowed = set(table.get(own_layer, LAYERS[own_layer])) | {own_layer}
    with open(path, encoding="utf-8", errors="replace") as handle:
        for number, line in enumerate(handle, 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            target = layer_of(match.group(1))
            if target is None or target in allowed:
                continue
            report(f"{path}:{number}: {own_layer} may not include {match.group(1)} ({target})")
            ok = False
    return ok


def check_tree(root, report):
    """Checks src/ and tests/ of root. A test folder takes the layer of the
    source folder it mirrors; tests of a layer may also use tests/common."""
    ok = True
    for top in ("src", "tests"):
        base = os.path.join(root, top)
        for folder, _, files in os.walk(base):
            relative = os.path.relpath(folder, base)
            layer = layer_of(relative + "/") if relative != "." else None
            if layer is None:
                continue
            for name in sorted(files):
                if name.endswith((".h", ".cpp", ".inc")):
                    table = TEST_LAYERS if top == "tests" else LAYERS
                    ok = check_file(os.path.join(folder, name), layer, report, table) and ok
    return ok


def self_test():
    """An upward include in a test file and in a source file is refused; a
    downward one passes."""
    with tempfile.TemporaryDirectory() as root:
        def write(relative, text):
            path = os.path.join(root, relative)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as handle:
                handle.write(text)

        write("src/platform/Good.h", '#include "core/TarniString.h"\n')
        messages = []
        if not check_tree(root, messages.append):
            print("self-test: a downward include was refused:", messages)
            return False
        write("tests/platform/UpwardTest.cpp", '#include "support/StringConverter.h"\n')
        write("src/core/Sideways.h", '#include "platform/FileAccess.h"\n')
        write("src/ui/Upward.h", '#include "dialogs/framework/DSBaseDialog.h"\n')
        messages = []
        if check_tree(root, messages.append) or len(messages) != 3:
            print("self-test: upward includes were not all refused:", messages)
            return False
    print("self-test: upward includes refused, downward ones accepted")
    return True


def main(argv):
    if argv[1:] == ["--self-test"]:
        return 0 if self_test() else 1
    root = argv[1] if len(argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
    if check_tree(root, print):
        print("check-includes: every include points down the layers")
        return 0
    return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv))

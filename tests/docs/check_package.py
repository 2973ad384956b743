#!/usr/bin/env python3
"""Packs the build, unpacks the Debian package into an empty folder and runs the command that lies there.

Usage: check_package.py BUILD ROOT
"""
import glob
import os
import shutil
import subprocess
import sys
import tempfile


def expect(condition, text):
    if not condition:
        sys.exit(text)


def run(*arguments, **options):
    done = subprocess.run(arguments, capture_output=True, text=True, timeout=300, check=False, **options)
    expect(done.returncode == 0, f"{arguments} ended with {done.returncode}: {done.stdout}{done.stderr}")
    return done.stdout


def main():
    build, root = map(os.path.abspath, sys.argv[1:3])
    if shutil.which("dpkg-deb") is None:
        print("no dpkg-deb here: skipped")
        sys.exit(77)
    with tempfile.TemporaryDirectory(prefix="ventara-package-") as folder:
        run("cpack", "--config", os.path.join(build, "CPackConfig.cmake"), "-G", "DEB", "-B", folder)
        packages = glob.glob(os.path.join(folder, "ventara_*_amd64.deb"))
        expect(len(packages) == 1, f"one package was expected, not {packages}")
        depends = run("dpkg-deb", "--field", packages[0], "Depends")
        expect("libsdl2" in depends, f"the package depends on '{depends.strip()}', which lacks SDL2")
        tree = os.path.join(folder, "tree")
        run("dpkg-deb", "--extract", packages[0], tree)
        for path in ("bin/ventara", "lib/ventara/libventara-console.so", "share/man/man1/ventara.1",
                     "share/applications/ventara.desktop", "share/icons/hicolor/scalable/apps/ventara.svg",
                     "share/doc/ventara/copyright", "share/doc/ventara/user.md"):
            expect(os.path.isfile(os.path.join(tree, "usr", path)), f"the package lacks usr/{path}")
        program = os.path.join(tree, "usr/bin/ventara")
        run(program, "--script", os.path.join(root, "docs/tour.txt"), cwd=folder)
        expect(os.path.isfile(os.path.join(folder, "tour-exit.png")), "the installed command left no last picture")
        os.rename(os.path.join(tree, "usr/lib/ventara"), os.path.join(tree, "usr/lib/elsewhere"))
        alone = subprocess.run([program, "--headless"], capture_output=True, text=True, timeout=60, check=False)
        expect(alone.returncode != 0 and "libventara-console.so" in alone.stderr,
               "without the console's image the command doesn't say what is missing")


if __name__ == "__main__":
    main()

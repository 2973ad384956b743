#!/usr/bin/env python3
"""Holds firmware images against what a board's firmware, a shell and a signing tool ask of them.

    check_pe.py ventara.efi --sbat sbat/ventara.csv --component ventara --version 0.9.0 --limit 409600
"""
import argparse
import struct
import sys

KINDS = {"application": 10, "boot-service-driver": 11}
MACHINE_X64 = 0x8664
MAGIC_PE32_PLUS = 0x20B
RELOCATIONS_STRIPPED = 0x0001
EXECUTABLE_IMAGE = 0x0002
DYNAMIC_BASE = 0x0040
NX_COMPAT = 0x0100
SECTION_EXECUTE, SECTION_WRITE = 0x20000000, 0x80000000
EXPORT, IMPORT, SECURITY, RELOCATION, DEBUG, TLS, BOUND_IMPORT, DELAY_IMPORT = 0, 1, 4, 5, 6, 9, 11, 13


class Image:
    def __init__(self, data):
        self.data = data
        (start,) = struct.unpack_from("<I", data, 0x3C)
        if data[:2] != b"MZ" or data[start:start + 4] != b"PE\0\0":
            raise ValueError("no PE image")
        (self.machine, section_count, self.time, _, _, optional_size, self.characteristics) = struct.unpack_from(
            "<HHIIIHH", data, start + 4)
        optional = start + 24
        (self.magic,) = struct.unpack_from("<H", data, optional)
        (self.entry,) = struct.unpack_from("<I", data, optional + 16)
        self.section_alignment, self.file_alignment = struct.unpack_from("<II", data, optional + 32)
        self.size_of_image, self.size_of_headers = struct.unpack_from("<II", data, optional + 56)
        self.subsystem, self.dll_characteristics = struct.unpack_from("<HH", data, optional + 68)
        (directory_count,) = struct.unpack_from("<I", data, optional + 108)
        self.directories = [struct.unpack_from("<II", data, optional + 112 + 8 * i) for i in range(directory_count)]
        self.sections = []
        for i in range(section_count):
            at = optional + optional_size + 40 * i
            name, virtual_size, address, raw_size, raw_at, _, _, _, _, flags = struct.unpack_from("<8sIIIIIIHHI", data, at)
            self.sections.append((name.rstrip(b"\0").decode(), virtual_size, address, raw_size, raw_at, flags))

    def directory(self, index):
        return self.directories[index] if index < len(self.directories) else (0, 0)

    def read(self, address, size):
        for _, virtual_size, start, raw_size, raw_at, _ in self.sections:
            if start <= address and address + size <= start + max(virtual_size, raw_size):
                return self.data[raw_at + address - start:raw_at + address - start + size]
        raise ValueError(f"no section holds {address:#x}")

    def relocation_count(self):
        address, size = self.directory(RELOCATION)
        count, at = 0, 0
        table = self.read(address, size) if size else b""
        while at + 8 <= len(table):
            _, block = struct.unpack_from("<II", table, at)
            if block < 8:
                break
            entries = struct.unpack_from(f"<{(block - 8) // 2}H", table, at + 8)
            count += sum(1 for entry in entries if entry >> 12 == 10)  # 64-bit addresses
            at += block
        return count


def find_problems(image, kind, sbat=None, component=None, version=None, limit=None):
    problems = []

    def expect(holds, problem):
        if not holds:
            problems.append(problem)

    expect(image.machine == MACHINE_X64, f"machine is {image.machine:#x}, not x86-64")
    expect(image.magic == MAGIC_PE32_PLUS, "not PE32+")
    expect(image.subsystem == KINDS[kind], f"subsystem is {image.subsystem}, not {KINDS[kind]} ({kind})")
    expect(image.characteristics & EXECUTABLE_IMAGE, "not marked as executable image")
    expect(not image.characteristics & RELOCATIONS_STRIPPED, "relocations are stripped")
    expect(image.dll_characteristics & DYNAMIC_BASE, "not marked as relocatable")
    expect(image.relocation_count() > 0, "no relocation of a 64-bit address, though there are tables of pointers")
    expect(image.dll_characteristics & NX_COMPAT, "NX_COMPAT isn't set")
    for index, name in ((IMPORT, "imports"), (BOUND_IMPORT, "bound imports"), (DELAY_IMPORT, "delayed imports"),
                        (TLS, "thread-local data"), (EXPORT, "exports")):
        expect(image.directory(index) == (0, 0), f"there are {name}")
    expect(image.section_alignment == 4096, f"sections are aligned to {image.section_alignment}, not to pages")
    for name, _, _, _, _, flags in image.sections:
        expect(not (flags & SECTION_EXECUTE and flags & SECTION_WRITE), f"{name} is both writable and executable")
    code = [s for s in image.sections if s[5] & SECTION_EXECUTE]
    expect(any(s[2] <= image.entry < s[2] + s[1] for s in code), "the entry point lies in no executable section")
    # A signing tool appends its certificate and enters it here; what is already behind the sections would be signed over.
    expect(len(image.directories) > SECURITY, "no room in the header for a signature")
    expect(image.directory(SECURITY) == (0, 0), "there is a signature already")
    end = max(raw_at + raw_size for _, _, _, raw_size, raw_at, _ in image.sections if raw_size)
    expect(len(image.data) == end, f"{len(image.data) - end} bytes behind the last section")
    if sbat is not None:
        found = [s for s in image.sections if s[0] == ".sbat"]
        expect(len(found) == 1, f"{len(found)} .sbat sections")
        for _, virtual_size, address, _, _, _ in found:
            expect(virtual_size == len(sbat), f".sbat has a virtual size of {virtual_size}, its text {len(sbat)}")
            expect(image.read(address, len(sbat)) == sbat, ".sbat isn't the text")
            lines = sbat.decode("ascii").splitlines()
            expect(lines[0].startswith("sbat,1,") and all(len(line.split(",")) == 6 for line in lines),
                   ".sbat's text isn't a table of six columns headed by sbat's own row")
            own = [line.split(",") for line in lines[1:]]
            expect([(row[0], row[4]) for row in own] == [(component, version)],
                   f".sbat's text is of {own}, not of {component} in version {version}")
    if limit is not None:
        expect(len(image.data) < limit, f"{len(image.data)} bytes, {limit} are allowed")
    return problems


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("image")
    parser.add_argument("--kind", choices=sorted(KINDS), default="application")
    parser.add_argument("--sbat", metavar="FILE", help="the text that the .sbat section must be")
    parser.add_argument("--component", help="whose generation that text tells")
    parser.add_argument("--version", help="and in which version")
    parser.add_argument("--limit", type=int, metavar="BYTES", help="the image must be smaller")
    options = parser.parse_args()
    sbat = None
    if options.sbat:
        with open(options.sbat, "rb") as file:
            sbat = file.read()
    with open(options.image, "rb") as file:
        image = Image(file.read())
    problems = find_problems(image, options.kind, sbat, options.component, options.version, options.limit)
    for problem in problems:
        print(f"{options.image}: {problem}")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()

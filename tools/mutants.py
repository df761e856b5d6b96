#!/usr/bin/env python3
"""Mutation testing for one C++ source: does the folder's test program notice a fault?

Applies one simple mutation at a time to FILE, rebuilds the test program of FILE's folder
(kxui/requisition/ui_req.cpp -> kxui_requisition_test), runs it and counts the mutant as
killed (tests fail or time out), survived (tests pass) or a compile error. The file is
always written back, even on Ctrl-C; a backup stays beside it while a run is under way.
Run from the project root: python3 tools/mutants.py kxui/requisition/ui_req.cpp --max 40
"""
import argparse
import os
import re
import signal
import subprocess
import sys
import time

KEYWORDS = {"if", "for", "while", "switch", "return", "sizeof", "catch", "decltype",
            "static_assert", "alignof", "noexcept", "throw", "delete", "new", "co_return",
            "else", "case", "do", "requires", "alignas", "typeid", "static_cast",
            "const_cast", "reinterpret_cast", "dynamic_cast"}
COMPARE = {"==": "!=", "!=": "==", "<": ">=", "<=": ">", ">": "<=", ">=": "<"}


def code_mask(text):
    """One flag per character: 'c' code, 's' inside a string/char literal, 'x' ignored
    (comments and preprocessor lines such as #include)."""
    mask = ["c"] * len(text)
    i, n, line_start = 0, len(text), True
    while i < n:
        ch = text[i]
        if line_start and ch == "#":
            j = text.find("\n", i)
            j = n if j < 0 else j
            while j < n and text[j - 1] == "\\":  # continued directive
                k = text.find("\n", j + 1)
                j = n if k < 0 else k
            mask[i:j] = "x" * (j - i)
            i = j
            continue
        if ch == "\n":
            line_start = True
        elif not ch.isspace():
            line_start = False
        if text.startswith("//", i):
            j = text.find("\n", i)
            j = n if j < 0 else j
            mask[i:j] = "x" * (j - i)
            i = j
        elif text.startswith("/*", i):
            j = text.find("*/", i + 2)
            j = n if j < 0 else j + 2
            mask[i:j] = "x" * (j - i)
            i = j
        elif text.startswith('R"', i) and (i == 0 or not (text[i - 1].isalnum() or text[i - 1] == "_")):
            m = re.match(r'R"([^(\s]*)\(', text[i:])
            end = text.find(")" + m.group(1) + '"', i) if m else -1
            j = n if end < 0 else end + len(m.group(1)) + 2
            mask[i:j] = "x" * (j - i)  # raw strings are left alone
            i = j
        elif ch in "\"'":
            if ch == "'" and i > 0 and text[i - 1].isalnum():  # digit separator
                i += 1
                continue
            j = i + 1
            while j < n and text[j] != ch and text[j] != "\n":
                j += 2 if text[j] == "\\" else 1
            mask[i:j + 1] = "s" * (j + 1 - i)
            i = j + 1
        else:
            i += 1
    return "".join(mask)


def match_paren(text, mask, open_at, step=1):
    """Index of the parenthesis matching the one at open_at (forward or backward), or -1."""
    pair = {"(": ")", ")": "("}[text[open_at]]
    depth, i = 0, open_at
    while 0 <= i < len(text) and abs(i - open_at) < 2000:
        if mask[i] == "c":
            if text[i] == text[open_at]:
                depth += 1
            elif text[i] == pair:
                depth -= 1
                if depth == 0:
                    return i
        i += step
    return -1


def split_args(text, mask, lo, hi):
    """Top-level comma-separated argument spans inside text[lo:hi]."""
    spans, depth, start = [], 0, lo
    for i in range(lo, hi):
        if mask[i] != "c":
            continue
        if text[i] in "([{":
            depth += 1
        elif text[i] in ")]}":
            depth -= 1
        elif text[i] == "," and depth == 0:
            spans.append((start, i))
            start = i + 1
    spans.append((start, hi))
    return [(a + len(text[a:b]) - len(text[a:b].lstrip()), b - len(text[a:b]) + len(text[a:b].rstrip()))
            for a, b in spans]


def candidates(text):
    """Every mutant as (start, end, replacement, description), in file order."""
    mask, out = code_mask(text), []

    def code(m):
        return all(c == "c" for c in mask[m.start():m.end()])

    for m in re.finditer(r"\b(true|false)\b", text):
        if code(m):
            flip = "false" if m.group() == "true" else "true"
            out.append((m.start(), m.end(), flip, f"{m.group()} -> {flip}"))
    for m in re.finditer(r"(?<=[\w)\]\"'] )(==|!=|<=|>=|<|>)(?= )", text):
        if code(m):
            out.append((m.start(), m.end(), COMPARE[m.group()], f"{m.group()} -> {COMPARE[m.group()]}"))
    for m in re.finditer(r"!(?=[\w(*])", text):
        if code(m):
            out.append((m.start(), m.end(), "", "drop negation '!'"))
    for m in re.finditer(r'"(?:[^"\\\n]|\\.)*"', text):
        if mask[m.start()] == "s" and (m.start() == 0 or mask[m.start() - 1] != "s"):
            body = m.group()[1:-1]
            out.append((m.start(), m.end(), f'"{body}~"', f"string {m.group()} altered"))
    for m in re.finditer(r"(?<![\w.'])(\d+)(?![\w.'])", text):
        if code(m):
            v = int(m.group(1))
            new = "1" if v == 0 else "0" if v == 1 else str(v + 1)
            out.append((m.start(), m.end(), new, f"constant {v} -> {new}"))
    for m in re.finditer(r"([A-Za-z_][\w:]*(?:(?:\.|->)[A-Za-z_][\w:]*)*)\s*\(", text):
        open_at = m.end() - 1
        if not code(m) or m.group(1).split("::")[-1] in KEYWORDS or (m.start() and text[m.start() - 1] in ".>:"):
            continue
        close = match_paren(text, mask, open_at)
        if close < 0:
            continue
        args = split_args(text, mask, open_at + 1, close)
        for (a0, a1), (b0, b1) in zip(args, args[1:]):
            x, y = text[a0:a1], text[b0:b1]
            literal = [v.startswith('"') for v in (x, y)]
            if x and y and x != y and literal[0] == literal[1] and "{" not in x + y and "\n" not in x + y and len(x + y) < 160 \
                    and not re.match(r"^(const\s+)?[\w:<>]+[&*]?\s+[&*]?\w+$", x):  # a declaration
                out.append((a0, b1, y + text[a1:b0] + x, f"swap arguments {x} <-> {y}"))
        semi = close + 1
        while semi < len(text) and text[semi].isspace():
            semi += 1
        before = m.start() - 1
        while before >= 0 and (text[before].isspace() or mask[before] == "x"):
            before -= 1
        starts_statement = before < 0 or text[before] in ";{}" or text[before - 3:before + 1] == "else"
        if text[before] == ")":  # the body of an if/while without braces
            opener = match_paren(text, mask, before, -1)
            starts_statement = opener > 0 and re.search(r"\b(if|while)\s*$", text[:opener]) is not None
        if semi < len(text) and text[semi] == ";" and starts_statement:
            out.append((m.start(), semi + 1, "{}", f"delete call {m.group(1)}(...)"))
    out.sort(key=lambda c: (c[0], c[1]))
    return out


def sample(items, limit):
    if not limit or len(items) <= limit:
        return items
    return [items[i * len(items) // limit] for i in range(limit)]


def run(cmd, timeout):
    try:
        r = subprocess.run(cmd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=timeout)
        return r.returncode, r.stdout.decode(errors="replace")
    except subprocess.TimeoutExpired:
        return None, "timeout"


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("file", help="C++ source, relative to the project root (the current directory)")
    ap.add_argument("--build-dir", default="build/default", help="CMake build directory (default: %(default)s)")
    ap.add_argument("--max", type=int, default=0, help="test at most N mutants, spread evenly over the file")
    ap.add_argument("--list", action="store_true", help="only list the candidate mutants")
    ap.add_argument("--timeout", type=int, default=120, help="seconds allowed for one test run (default: %(default)s)")
    opt = ap.parse_args()

    root = os.getcwd()
    path = os.path.relpath(os.path.abspath(opt.file), root)
    if path.startswith("..") or not os.path.isfile(path):
        sys.exit(f"mutants: {opt.file} is not a file under {root}")
    backup = path + ".mutants-backup"
    if os.path.exists(backup):  # a previous run was killed hard: put the original back first
        os.replace(backup, path)
        print(f"mutants: restored {path} from an interrupted run")
    with open(path, encoding="utf-8") as f:
        original = f.read()
    lines_before = [original.count("\n", 0, c[0]) + 1 for c in candidates(original)]
    chosen = sample(list(zip(lines_before, candidates(original))), opt.max)
    if opt.list:
        for line, (_, _, _, desc) in chosen:
            print(f"{path}:{line}: {desc}")
        print(f"{len(chosen)} of {len(lines_before)} candidate mutants")
        return 0

    target = os.path.dirname(path).replace(os.sep, "_") + "_test"
    if not os.path.exists(os.path.join(opt.build_dir, "CMakeCache.txt")):
        preset = ["--preset", "default"] if os.path.normpath(opt.build_dir) == os.path.join("build", "default") \
            else ["-S", ".", "-G", "Ninja", "-DCMAKE_BUILD_TYPE=RelWithDebInfo"]
        subprocess.run(["cmake", *preset, "-B", opt.build_dir, "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"], check=True,
                       stdout=subprocess.DEVNULL)
    build = ["cmake", "--build", opt.build_dir, "-j2", "--target", target]

    def locate():
        for d, _, files in os.walk(opt.build_dir):
            if target in files:
                return os.path.join(d, target)
        sys.exit(f"mutants: no program {target} in {opt.build_dir}")

    rc, log = run(build, None)
    if rc != 0:
        sys.exit(f"mutants: {target} does not build unmutated:\n{log[-3000:]}")
    program = locate()
    rc, log = run([program], opt.timeout)
    if rc != 0:
        sys.exit(f"mutants: {target} fails unmutated; fix the tests first:\n{log[-3000:]}")

    def stop(*_):
        raise KeyboardInterrupt
    signal.signal(signal.SIGTERM, stop)
    counts, survivors, started = {"killed": 0, "survived": 0, "compile error": 0}, [], time.time()
    with open(backup, "w", encoding="utf-8") as f:
        f.write(original)
    try:
        for k, (line, (a, b, repl, desc)) in enumerate(chosen, 1):
            with open(path, "w", encoding="utf-8") as f:
                f.write(original[:a] + repl + original[b:])
            rc, _ = run(build, None)
            if rc != 0:
                verdict = "compile error"
            else:
                rc, _ = run([program], opt.timeout)
                verdict = "survived" if rc == 0 else "killed"
            counts[verdict] += 1
            if verdict == "survived":
                survivors.append(f"{path}:{line}: {desc}")
            print(f"[{k}/{len(chosen)}] {path}:{line}: {desc}: {verdict}", flush=True)
    finally:
        with open(path, "w", encoding="utf-8") as f:
            f.write(original)
        os.remove(backup)
        run(build, None)  # leave the build matching the sources

    judged = counts["killed"] + counts["survived"]
    rate = 100.0 * counts["killed"] / judged if judged else 0.0
    print(f"\n{path}: {counts['killed']} killed, {counts['survived']} survived, "
          f"{counts['compile error']} compile errors; kill rate {rate:.1f}% "
          f"({len(chosen)} of {len(lines_before)} candidates, {time.time() - started:.0f}s)")
    for s in survivors:
        print("  survived: " + s)
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit("\nmutants: interrupted; the source file was restored")

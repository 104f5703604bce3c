#!/usr/bin/env python3
"""Writes docs/performance.md and its plots from Google Benchmark JSON files.

    scripts/perf_report.py RESULTS_DIR DOCS_DIR

RESULTS_DIR holds one <program>.json per benchmark program (scripts/bench
writes them). Each benchmark name is read as an implementation doing an
operation on some arguments; the rules below say which part is which. Rows
of the same program, operation and arguments form one line of the report:
the library's CPU time, each peer's, and the ratio library / best peer
(below 1: the library is faster). Sweeps over input sizes become plots of
throughput against size.
"""
import json
import os
import re
import subprocess
import sys
from collections import OrderedDict, defaultdict

LIBRARY = "Kelp_Foundation"

# Per program: (pattern over the benchmark's base name, operation, implementation).
# The operation may use the pattern's groups as {1}, {2}. The first rule that
# matches wins; names no rule matches fall to GENERIC below.
RULES = {
    "bench_utf": [
        (r"Zun_(\w+)", "{1}", LIBRARY),
        (r"Icu_(\w+)", "{1}", "ICU"),
        (r"Utfcpp_(\w+)", "{1}", "utfcpp"),
        (r"Iconv_(\w+)", "{1}", "iconv"),
    ],
    "bench_matrix": [
        (r"BM_Zun_TransformFloat_(InPlace|ToTarget)", "TransformFloat", LIBRARY + " ({1})"),
        (r"BM_Eigen_TransformFloat<(\d)>", "TransformFloat/stride{1}", "Eigen"),
        (r"BM_Copy_Float", "TransformFloat", "memcpy"),
        (r"BM_Zun_TransformVector4_(InPlace|ToTarget)", "TransformVector4", LIBRARY + " ({1})"),
        (r"BM_Eigen_TransformVector4", "TransformVector4", "Eigen"),
        (r"BM_Copy_Vector4", "TransformVector4", "memcpy"),
        (r"BM_Eigen_InvertAffine", "Invert/affine", "Eigen (affine inverse)"),
        (r"BM_Zun_(\w+)", "{1}", LIBRARY),
        (r"BM_Eigen_(\w+)", "{1}", "Eigen"),
        (r"BM_Glm_(\w+)", "{1}", "GLM"),
    ],
    "bench_quaternion": [
        (r"BM_Zun_SlerpEvaluate", "Slerp", LIBRARY),
        (r"BM_Zun_SlerpConstructAndEvaluate", "Slerp", LIBRARY + " (made and evaluated)"),
        (r"BM_Zun_(\w+)", "{1}", LIBRARY),
        (r"BM_Eigen_(\w+)", "{1}", "Eigen"),
        (r"BM_Glm_(\w+)", "{1}", "GLM"),
    ],
    "bench_bbox": [
        (r"BM_BBoxExtendArray", "Extend by a point array", LIBRARY),
        (r"BM_PlainMinMaxLoop$", "Extend by a point array", "plain min/max loop"),
        (r"BM_BBoxExtendFloatTriples", "Extend by float triples", LIBRARY),
        (r"BM_PlainMinMaxLoopFloatTriples", "Extend by float triples", "plain min/max loop"),
        (r"BM_BBoxExtendTransformed", "Extend by transformed points", LIBRARY),
        (r"BM_TransformCopyThenMinMaxLoop", "Extend by transformed points", "transform copy + min/max loop"),
        (r"BM_BBox(\w+)", "{1}", LIBRARY),
    ],
    "bench_color": [
        (r"BM_Color_(\w+)", "{1}", LIBRARY),
        (r"BM_Lcms2_(\w+)", "{1}", "Little CMS"),
        (r"BM_(\w+)", "{1}", LIBRARY),
    ],
    "bench_fastmesh": [
        (r"(\w+)<zunFastMesh<(\w+)>>", "{1}<{2}>", LIBRARY),
        (r"(\w+)<std::vector<(\w+)>>", "{1}<{2}>", "std::vector"),
    ],
    "bench_string": [
        (r"(\w+?)_zunStringW_FromUtf8", "{1}", LIBRARY + " (zunStringW from UTF-8)"),
        (r"(\w+?)_zunStringW", "{1} (UTF-16)", LIBRARY),
        (r"(\w+?)_stdU16StringViaNarrow", "{1} (UTF-16)", "std::u16string via narrow"),
        (r"(\w+?)_zunString", "{1}", LIBRARY),
        (r"(\w+?)_stdU16\w*", "{1}", "std::u16string"),
        (r"(\w+?)_std\w*", "{1}", "std::string"),
    ],
    "bench_stringlist": [
        (r"List(\w+)", "{1}", LIBRARY),
        (r"Vector(\w+)", "{1}", "std::vector<std::string>"),
    ],
    "bench_tess": [
        (r"BM_PolyTess", "Tessellate", LIBRARY),
        (r"BM_RawGLU", "Tessellate", "raw GLU"),
    ],
    "bench_debug_log": [
        (r"DebugLog_FilteredOut", "A message whose tag is not listed", LIBRARY),
        (r"Snprintf_SameMessage", "A message whose tag is not listed", "snprintf of the message"),
        (r"ReleaseLog_Append", "Append a message to a log file", LIBRARY),
        (r"Fopen_AppendClose", "Append a message to a log file", "fopen, fprintf, fclose"),
        (r"Fprintf_KeptOpen", "Append a message to a log file", "fprintf to a FILE kept open"),
    ],
    "bench_file": [
        (r"WriteLargeBlock_zunFileMem", "WriteLargeBlock", LIBRARY + " (memory)"),
        (r"WriteLargeBlock_zunFile", "WriteLargeBlock", LIBRARY + " (disk)"),
        (r"(\w+?)_zunFile", "{1}", LIBRARY),
        (r"(\w+?)_FILE", "{1}", "FILE *"),
        (r"(\w+?)_(?:ofstream|ifstream)", "{1}", "std::fstream"),
        (r"(\w+?)_cereal", "{1}", "cereal"),
        (r"(\w+?)_write", "{1}", "write(2)"),
        (r"(\w+?)_memcpy", "{1}", "memcpy"),
    ],
    "bench_chunk": [
        (r"Write_zunFile", "Write 10^5 chunks in a document chunk", LIBRARY),
        (r"Write_FILE", "Write 10^5 chunks in a document chunk", "FILE * with size fields and fseek"),
        (r"Walk_zunFile", "Walk 10^5 chunks, reading one value of each", LIBRARY),
        (r"Walk_FILE", "Walk 10^5 chunks, reading one value of each", "FILE * with size fields and fseek"),
    ],
    "bench_signal": [
        (r"EmitToHandlers<(\w+)>", "Emit", LIBRARY + " ({1})"),
        (r"CallStdFunctionVector", "Emit", "std::function vector"),
        (r"DeathOfUnwatchedObject<(\w+)>", "Death of an unwatched object", LIBRARY + " ({1})"),
        (r"DeathOfPlainVirtualObject", "Death of an unwatched object", "plain virtual object"),
    ],
}

# Benchmark names of programs without rules: `<Impl>_<Operation>` or
# `BM_<Impl>_<Operation>`, the implementation being the library when it
# starts with "zun" (any case).
GENERIC = re.compile(r"(?:BM_)?([A-Za-z0-9]+)_(\w+)")

PEER_NAMES = {
    "stdio": "FILE *", "file": "FILE *", "fstream": "std::fstream", "cereal": "cereal",
    "memcpy": "memcpy", "write": "write(2)", "inih": "inih", "simpleini": "SimpleIni",
    "stdfs": "std::filesystem::path", "filesystem": "std::filesystem::path", "std": "std",
}

# Rows that bound what any implementation can reach rather than compete with
# it: the memory copy and the plain system call of the same bytes.
ANCHORS = ("memcpy", "write(2)")

# The goal against the memory copy, for the rows that have one.
MEMCPY_GOAL = 1.5

# Why a row is slower where the cause is known: (program, operation prefix) -> note.
NOTES = {
    ("bench_string", "Append"): "A zunString keeps no spare capacity: its block is exactly the text and its "
                                "terminator, so every append allocates and copies the whole text, and sums it "
                                "for the checksum. std::string grows geometrically. The cost is part of the "
                                "string's contract: it keeps no capacity.",
    ("bench_string", "Assign"): "Every assignment takes a new block of the exact size (no capacity is kept) and "
                                "sums the text for the checksum that every mutator keeps; the sum is taken in the "
                                "copying pass, so what is left over std::string is that sum and the header of the "
                                "library's allocator.",
    ("bench_string", "Printf (UTF-16)"): "The C runtime has no formatter of 16-bit text: the library's own reads the "
                                         "format, and numbers go through the runtime's narrow formatter and are "
                                         "widened in place, as the peer widens its narrow result.",
    ("bench_debug_log", "A message"): "The tag test lowers the tag into one heap block and looks each of its "
                                      "comma-separated pieces up in the tag list where it stands; the message "
                                      "itself is never formatted.",
    ("bench_fastmesh", "Add<"): "Add is one of the array's virtual operations, so the caller's compiler, which "
                                "cannot prove the array's dynamic type, loads the virtual table's entry and compares "
                                "it before every inlined append, and keeps the element in memory for the call it "
                                "might have to make; std::vector's push_back has neither. With the check gone (Add "
                                "made final) the same loop is about 5% faster than std::vector; the array's fewer, "
                                "in-place block growths lead from a few thousand elements on.",
    ("bench_stringlist", "Build"): "A list keeps its texts in three blocks (the packed texts, their offsets and a "
                                   "flag byte for each); the texts' block starts at 16 units and doubles, so 16 "
                                   "names of 16 units take it through four resizes, and every append runs the "
                                   "array's capacity rule. Names this short live inside the peer's std::string "
                                   "objects, in the vector's one block.",
    ("bench_tess", "Tessellate"): "Each call of the wrapper empties the OpenGL error queue before its GLU call and "
                                  "reads it after, so that an error the caller left pending is not taken for one of "
                                  "the tessellator's: at least two glGetError calls per corner through the driver's "
                                  "dispatch, 25 for a polygon of 10 corners, which is most of the difference; raw "
                                  "GLU reads none. On large polygons the tessellation itself decides.",
    ("bench_settings", "Read"): "The inih peer parses and hands each key to a callback that counts it, keeping "
                                "nothing; the library builds the whole comment-keeping model of the file, every "
                                "line a record, in chunks that grow to 16 MiB, which the C library maps fresh "
                                "from the system and gives back at close, so each read also faults in new pages. "
                                "Against the peer that keeps a model (SimpleIni) the library leads at every size.",
    ("bench_string", "CompareEqual"): "Both sides end in one memcmp of the same bytes after their header "
                                      "tests; the figure follows where the two blocks of each pair lie relative "
                                      "to each other, and runs of this program alone give the library the lead "
                                      "at 4096 bytes (48.5 ns against 58.8 ns, medians of three).",
    ("bench_debug_log", "Append"): "The release log makes its folder and opens and closes its file at every "
                                   "message, so that each message is on disk at once and nothing is held open.",
    ("bench_file", "ReadString"): "Every string read takes a block of the exact length from the library's allocator "
                                  "and zero-fills it before the bytes arrive, so that a read stopped at a limit "
                                  "leaves zeros; the peers' std::string reuses its capacity.",
    ("bench_matrix", "TransformFloat"): "The results must be the double formula's narrowed to float, and a float "
                                        "times a double element needs more bits than a float holds, so the library "
                                        "widens every coordinate and computes in double; the Eigen peer computes in "
                                        "float, with twice the lanes per vector instruction. On arrays that stay in "
                                        "the caches that shows; on long ones memory decides and the library leads.",
    ("bench_path", "LastComponent"): "A path's text is held in 16-bit units and the narrow name is the UTF-8 of the "
                                     "wide one, so the name is converted; the returned zunString holds its text in a "
                                     "heap block of the exact size and a sum of its bytes, so every name costs one "
                                     "allocation and one sum. std::filesystem::path keeps the narrow text, and its "
                                     "std::string holds a name of up to 15 bytes inside the object, without the "
                                     "heap: on a short name an allocation is measured against none; on a longer "
                                     "one, which both allocate, the library is ahead.",
    ("bench_signal", "Emit"): "Each handler costs two indirect calls: its virtual Invoke and the member-function "
                              "pointer it holds, with its adjustment, as the library's handler objects are laid "
                              "out; a std::function makes one, into a thunk with the handler's body inlined. The "
                              "emission adds about 2 ns for its rules (blocked and re-entrant emissions dropped, "
                              "handlers counted once, handlers removed meanwhile swept). A ThreadSafe signal also "
                              "takes its recursive mutex through a guard allocated on the heap for each emission.",
    ("bench_signal", "Death"): "Every zunBaseT object looks its address up in the process-wide map of death "
                               "notices as it dies; a plain object has nothing to look up.",
}

# Said under a program's table: how to read it.
PROGRAM_NOTES = {
    "bench_file": "The large write goes to disk by whole cache blocks, as all the stream's storage traffic does: "
                  "a seek and a write per 64 KiB block. Most of its time is the system's own copy into its page "
                  "cache, which `write(2)` of the same bytes shows alone, so no write to disk comes near the "
                  "memory copy; into a memory stream the same write is one copy.",
    "bench_utf": "Every implementation takes a fresh result block per conversion. The program keeps all blocks "
                 "on the heap (mallopt): otherwise the C library maps fresh pages for a large block whose size "
                 "differs from the last one freed, which at 10^7 measures page faults rather than converters. The "
                 "library converts into a worst-case block and gives the tail back, so its request never repeats "
                 "the size it freed: in a loop of large conversions under the default allocator it pays the faults "
                 "that exact-size peers are spared; a single conversion pays the same faults in every "
                 "implementation.",
    "bench_chunk": "The peer writes each tag and a size placeholder, the body, and patches the size with "
                   "ftell/fseek/fwrite; its reader reads each header and the first value, and seeks over the "
                   "rest. On disk it is fopen, in memory open_memstream and fmemopen. The library's stream "
                   "patches a size that lies in its cached block without a storage call.",
    "bench_matrix": "`memcpy` copies the same bytes from one array to another: against it the transforms show "
                    "what their arithmetic adds to the memory traffic, which decides on long arrays.",
}

# Families plotted as throughput against input size.
PLOTS = OrderedDict([
    ("bench_utf", "UTF conversion"),
    ("bench_file", "Cached stream"),
    ("bench_matrix", "Point transforms"),
    ("bench_settings", "Settings"),
])


def classify(program, base):
    for pattern, operation, implementation in RULES.get(program, []):
        match = re.fullmatch(pattern, base)
        if match:
            groups = (base,) + match.groups()
            return operation.format(*groups), implementation.format(*groups)
    match = GENERIC.fullmatch(base)
    if not match:
        return base, LIBRARY
    impl, operation = match.group(1), match.group(2)
    if impl.lower().startswith("zun"):
        return operation, LIBRARY
    return operation, PEER_NAMES.get(impl.lower(), impl)


def split_args(program, name):
    parts = name.split("/")
    base, args = parts[0], [p for p in parts[1:] if not p.startswith(("min_time", "real_time", "iterations"))]
    # Captured labels such as stride3 or Ascii belong to the operation; a
    # trailing number is the input size.
    size = None
    if args and re.fullmatch(r"\d+", args[-1]):
        size = int(args[-1])
        args = args[:-1]
    return base, "/".join(args), size


def load(results_dir):
    rows = []
    for file_name in sorted(os.listdir(results_dir)):
        if not file_name.endswith(".json"):
            continue
        program = file_name[:-5]
        with open(os.path.join(results_dir, file_name)) as handle:
            data = json.load(handle)
        for entry in data.get("benchmarks", []):
            if entry.get("run_type") == "aggregate" or "error_occurred" in entry:
                continue
            base, label, size = split_args(program, entry["run_name"] if "run_name" in entry else entry["name"])
            operation, implementation = classify(program, base)
            if label:
                operation = operation + "/" + label if "/" not in operation else operation
            unit = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}[entry.get("time_unit", "ns")]
            rows.append({
                "program": program, "operation": operation, "implementation": implementation, "size": size,
                "cpu_ns": entry["cpu_time"] * unit,
                "bytes_per_second": entry.get("bytes_per_second"),
                "items_per_second": entry.get("items_per_second"),
            })
    return rows


def format_time(ns):
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if ns >= scale:
            return "%.3g %s" % (ns / scale, unit)
    return "%.3g ns" % ns


def report(rows, docs_dir, context):
    by_program = defaultdict(list)
    for row in rows:
        by_program[row["program"]].append(row)
    lines = ["# Performance", "",
             "Written by `scripts/bench` from one run of every benchmark program in `bench/`; "
             "do not edit by hand. " + context, "",
             "Each table gives the CPU time per iteration of the library and of every peer doing the "
             "same job on the same input, and the ratio of the library's time to the best peer's "
             "(below 1: the library is faster). Rows without a peer measure the library alone. "
             "`memcpy` and `write(2)` rows are the memory and system anchors, not peers.", ""]
    summary = {"rows": 0, "faster": 0, "slower": [], "anchored": []}
    for program in sorted(by_program):
        program_rows = by_program[program]
        implementations = []
        for row in program_rows:
            if row["implementation"] not in implementations:
                implementations.append(row["implementation"])
        library = [i for i in implementations if i.startswith(LIBRARY)]
        anchors = [i for i in implementations if i in ANCHORS]
        peers = [i for i in implementations if not i.startswith(LIBRARY) and i not in ANCHORS]
        groups = OrderedDict()
        for row in program_rows:
            groups.setdefault((row["operation"], row["size"]), {})[row["implementation"]] = row["cpu_ns"]
        columns = library + peers + ["%s (anchor)" % a for a in anchors]
        against_copy = "memcpy" in anchors
        lines += ["## " + program, "",
                  "| operation | size | " + " | ".join(columns) + " | library / best peer |" +
                  (" library / memcpy |" if against_copy else ""),
                  "|---|---:|" + "---:|" * (len(columns) + 1 + (1 if against_copy else 0))]
        for (operation, size), times in groups.items():
            cells = [format_time(times[i]) if i in times else "" for i in library + peers + anchors]
            real_peers = [times[p] for p in peers if p in times]
            ours = [times[i] for i in library if i in times]
            name = "%s %s%s" % (program, operation, "" if size is None else "/%d" % size)
            ratio = ""
            if real_peers and ours:
                value = min(ours) / min(real_peers)
                ratio = "%.2f" % value
                summary["rows"] += 1
                if value <= 1.0:
                    summary["faster"] += 1
                else:
                    note = next((text for (p, prefix), text in NOTES.items()
                                 if p == program and operation.startswith(prefix)), "")
                    summary["slower"].append("%s (%.2f)%s" % (name, value, ": " + note if note else ""))
            copy_ratio = ""
            if against_copy and "memcpy" in times and ours:
                each = ["%s %.2f" % (i[len(LIBRARY):].strip(" ()") or "library", times[i] / times["memcpy"])
                        for i in library if i in times]
                copy_ratio = ", ".join(each) if len(each) > 1 else "%.2f" % (min(ours) / times["memcpy"])
                summary["anchored"].append("%s: %s" % (name, ", ".join(each)))
            lines.append("| %s | %s | %s | %s |%s" % (operation, "" if size is None else size, " | ".join(cells), ratio,
                                                     " %s |" % copy_ratio if against_copy else ""))
        if program in PROGRAM_NOTES:
            lines += ["", PROGRAM_NOTES[program]]
        if program in PLOTS and plot(program, program_rows, docs_dir):
            lines += ["", "![%s](performance/%s.png)" % (PLOTS[program], program)]
        lines.append("")
    head = ["## Summary", "",
            "Rows with a peer: %d; the library is faster on %d." % (summary["rows"], summary["faster"]), ""]
    if summary["slower"]:
        head += ["Rows where a peer is faster (library / best peer):", ""] + \
                ["- " + entry for entry in summary["slower"]] + [""]
    if summary["anchored"]:
        head += ["Against the memory copy of the same bytes (library / memcpy; the goal is %.1f or less). "
                 "A disk write also pays the system's own copy into its page cache, which `write(2)` shows "
                 "alone:" % MEMCPY_GOAL, ""] + ["- " + entry for entry in summary["anchored"]] + [""]
    lines[6:6] = head
    with open(os.path.join(docs_dir, "performance.md"), "w") as handle:
        handle.write("\n".join(lines) + "\n")
    return summary


def plot(program, rows, docs_dir):
    """Throughput against input size: one panel per operation, one line per implementation."""
    panels = OrderedDict()
    for row in rows:
        rate = row["bytes_per_second"] or row["items_per_second"]
        if row["size"] is not None and rate:
            panels.setdefault(row["operation"], defaultdict(list))[row["implementation"]].append((row["size"], rate))
    panels = OrderedDict((op, {impl: sorted(points) for impl, points in lines.items() if len(points) >= 3})
                         for op, lines in panels.items())
    panels = OrderedDict((op, lines) for op, lines in panels.items() if lines)
    if not panels:
        return False
    implementations = sorted({impl for lines in panels.values() for impl in lines},
                             key=lambda impl: (not impl.startswith(LIBRARY), impl))
    out_dir = os.path.join(docs_dir, "performance")
    os.makedirs(out_dir, exist_ok=True)
    data_path = os.path.join(out_dir, program + ".dat")
    blocks = []
    with open(data_path, "w") as handle:
        for operation, lines in panels.items():
            for impl, points in lines.items():
                handle.write("# %s %s\n" % (impl, operation))
                for size, rate in points:
                    handle.write("%d %g\n" % (size, rate))
                handle.write("\n\n")
                blocks.append((operation, impl))
    unit = "bytes" if any(r["bytes_per_second"] for r in rows) else "items"
    columns = min(len(panels), 3)
    rows_needed = (len(panels) + columns - 1) // columns
    script = ["set terminal pngcairo noenhanced size %d,%d font ',9'" % (520 * columns, 360 * rows_needed + 60),
              "set output '%s'" % os.path.join(out_dir, program + ".png"),
              "set logscale xy", "set grid", "set format x '10^{%L}'", "set key bottom left font ',8'",
              "set xlabel 'input size'", "set ylabel '%s per second'" % unit,
              "set multiplot layout %d,%d title '%s: throughput against input size'" % (rows_needed, columns,
                                                                                          PLOTS[program])]
    for operation, lines in panels.items():
        plots = []
        for impl in lines:
            index = blocks.index((operation, impl))
            color = implementations.index(impl) + 1
            width = 2.5 if impl.startswith(LIBRARY) else 1.2
            plots.append("'%s' index %d with linespoints lc %d lw %.1f title '%s'"
                         % (data_path, index, color, width, impl))
        script += ["set title '%s'" % operation, "plot " + ", ".join(plots)]
    script.append("unset multiplot")
    result = subprocess.run(["gnuplot"], input="\n".join(script), text=True, capture_output=True)
    os.remove(data_path)
    if result.returncode != 0:
        sys.stderr.write(result.stderr)
        return False
    return True


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: perf_report.py RESULTS_DIR DOCS_DIR")
    rows = load(sys.argv[1])
    context = os.environ.get("ZUN_BENCH_CONTEXT", "")
    summary = report(rows, sys.argv[2], context)
    print("%d rows with a peer, the library faster on %d; see docs/performance.md" % (summary["rows"],
                                                                                      summary["faster"]))


if __name__ == "__main__":
    main()

#!/usr/bin/env bash
# Builds the benchmarks in Release and runs them on the synthetic patient (1280 x 800 off screen,
# Mesa's llvmpipe unless LIBGL_ALWAYS_SOFTWARE=0), then prints one table of figures and the
# ratios that matter: the library's frame against a bare draw loop of the same triangles, each
# pick against one frame.
# Usage: scripts/bench.sh [build-dir]   (default build-main, the Release tree main.sh builds)
# The JSON of each benchmark stays in <build-dir>/bench-results/.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
build=${1:-build-main}
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache); fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVX_BUILD_TESTS=OFF -DVX_BUILD_BENCH=ON \
  "${launcher[@]}" >/dev/null
jobs=$(nproc)
[ "$jobs" -gt 2 ] && jobs=2
cmake --build "$build" -j"$jobs"

export LIBGL_ALWAYS_SOFTWARE=${LIBGL_ALWAYS_SOFTWARE:-1}
results="$build/bench-results"
mkdir -p "$results"
jsons=()
for exe in "$build"/bin/bench_*; do
  b=$(basename "$exe"); b=${b#bench_}
  echo "running bench_$b ..."
  "$exe" --benchmark_out="$results/$b.json" --benchmark_out_format=json \
    --benchmark_format=console >"$results/$b.txt" 2>&1 || { cat "$results/$b.txt"; exit 1; }
  jsons+=("$results/$b.json")
done

python3 - "${jsons[@]}" <<'PY'
import json, sys

rows = {}
for path in sys.argv[1:]:
    with open(path) as f:
        data = json.load(f)
    for b in data.get("benchmarks", []):
        name = b["name"].replace("/min_time:0.500", "")
        if not name.startswith("BM_Scale"):
            name = name.split("/")[0]
        if name in ("BM_AuxFrame200", "BM_PipeSetBSplineCurve"):
            name = "/".join(b["name"].split("/")[:2])  # one row per argument
        if b.get("error_occurred"):
            rows[name] = {"error": b.get("error_message", "error")}
            continue
        scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}[b.get("time_unit", "ns")]
        rows[name] = {"wall": b["real_time"] * scale, "cpu": b["cpu_time"] * scale,
                      "extra": {k: v for k, v in b.items() if k in ("triangles", "meshes")}}

what = [
    ("BM_FullFrame", "full frame: RenderScene + Flush + glFinish, fixed path"),
    ("BM_BareLoop", "bare loop: one glDrawArrays per mesh, same tests and light"),
    ("BM_PickTooth", "pick a tooth: ProcessFeedback + DoSelect"),
    ("BM_PickVertex", "pick a vertex"),
    ("BM_PickEdge", "pick an edge"),
    ("BM_BuildMeshBuffers", "build every mesh buffer (VxVBOHandleMgr)"),
    ("BM_GenerateSynthetic", "generate the synthetic patient"),
    ("BM_WriteCase", "write it as a case directory"),
    ("BM_ReadCase", "read that case (VxCaseIO::Read)"),
    ("BM_ToothIniUnchanged", "tooth colour INI read per draw, file unchanged"),
    ("BM_ToothIniParsedEveryTime", "the same read parsing the file every time"),
    ("BM_ToothIniMissing", "the same read with no file"),
    ("BM_FirstFrameCompileAll", "shader path: all 12 kept programs compiled, first draw each"),
    ("BM_PerCallMeshCompile", "shader path: one immediate mesh draw's own compile"),
    ("BM_PerCallGumCompile", "shader path: the same for a gum (two compiles)"),
    ("BM_AuxFrameBare", "frame + the empty aux registry's Render"),
    ("BM_AuxFrame200/0", "frame + 200 aux objects (lines, spheres, arrows, circles)"),
    ("BM_AuxFrame200/1", "frame + 200 aux lines"),
    ("BM_AuxFrame500Points", "frame + 500 aux spheres"),
    ("BM_AuxRenderLines", "aux Render alone: 5,000 hidden and 200 visible lines"),
    ("BM_AuxHitTest200", "aux HitTest over 200 objects"),
    ("BM_AuxHitTestPolyline500", "aux HitTest over a 500-point polyline"),
    ("BM_PipeSetBSplineCurve/0", "pipe mesh of an arch curve, coarse"),
    ("BM_PipeSetBSplineCurve/1", "the same, normal density"),
    ("BM_PipeSetBSplineCurve/2", "the same, fine"),
]
print()
print(f"{'benchmark':<28} {'wall ms':>10} {'cpu ms':>10}  what")
print("-" * 96)
for name, text in what:
    r = rows.get(name)
    if r is None:
        print(f"{name:<28} {'-':>10} {'-':>10}  {text} (not run)")
    elif "error" in r:
        print(f"{name:<28} {'error':>10} {'':>10}  {text}: {r['error']}")
    else:
        extra = ", ".join(f"{k} {v:,.0f}" for k, v in r["extra"].items())
        print(f"{name:<28} {r['wall']:>10.4f} {r['cpu']:>10.3f}  {text}" + (f" [{extra}]" if extra else ""))

known = {name for name, _ in what}
for name, r in rows.items():
    if name in known or name.startswith("BM_Scale"):
        continue
    if "error" in r:
        print(f"{name:<28} {'error':>10} {'':>10}  {r['error']}")
    else:
        print(f"{name:<28} {r['wall']:>10.4f} {r['cpu']:>10.3f}")

def ratio(a, b, text):
    ra, rb = rows.get(a), rows.get(b)
    if not ra or not rb or "wall" not in ra or "wall" not in rb or rb["wall"] == 0:
        print(f"  {text}: n/a")
        return
    print(f"  {text}: {ra['wall'] / rb['wall']:.3g} (wall), {ra['cpu'] / rb['cpu']:.3g} (cpu)")

print()
print("ratios:")
ratio("BM_FullFrame", "BM_BareLoop", "library frame / bare loop (the library's overhead)")
for pick in ("BM_PickTooth", "BM_PickVertex", "BM_PickEdge"):
    ratio(pick, "BM_FullFrame", f"{pick[7:].lower()} pick / one full frame")
ratio("BM_ReadCase", "BM_GenerateSynthetic", "read the case / generate it")
for aux in ("BM_AuxFrame200/0", "BM_AuxFrame200/1", "BM_AuxFrame500Points"):
    ratio(aux, "BM_AuxFrameBare", f"{aux} / the bare frame")
ratio("BM_ToothIniUnchanged", "BM_ToothIniParsedEveryTime", "INI read with the change check / parsing every time")
ratio("BM_ToothIniUnchanged", "BM_FullFrame", "one INI read / one full frame")
# The fixed frame against bare loops of the same triangles, by size: with GL's default state and
# with the state the library sets, and what each piece of that state costs.
sizes = sorted({int(n.split("/")[1]) for n in rows if n.startswith("BM_ScaleFrame/")})
if sizes:
    bits = {30: "two-sided lighting", 29: "GL_NORMALIZE", 27: "light at the eye",
            23: "specular material", 15: "stencil writes"}
    print()
    print("frame cost by size (cpu ms | wall ms):")
    print(f"{'triangles':>10} {'frame':>15} {'bare default':>15} {'bare same':>15} {'frame/same':>11} {'frame/default':>14}")
    for n in sizes:
        f, d, a = (rows.get(k, {}) for k in (f"BM_ScaleFrame/{n}", f"BM_ScaleBare/{n}/0", f"BM_ScaleBare/{n}/31"))
        if not all("cpu" in r for r in (f, d, a)):
            continue
        print(f"{n:>10,} {f['cpu']:>7.1f}|{f['wall']:<7.1f} {d['cpu']:>7.1f}|{d['wall']:<7.1f} "
              f"{a['cpu']:>7.1f}|{a['wall']:<7.1f} {f['cpu']/a['cpu']:>5.2f}|{f['wall']/a['wall']:<5.2f} "
              f"{f['cpu']/d['cpu']:>6.2f}|{f['wall']/d['wall']:<6.2f}")
    print("cost of each piece of the library's state (bare same state minus bare without it, cpu ms):")
    for n in sizes:
        a = rows.get(f"BM_ScaleBare/{n}/31", {})
        parts = []
        for b, text in bits.items():
            r = rows.get(f"BM_ScaleBare/{n}/{b}", {})
            if "cpu" in a and "cpu" in r:
                parts.append(f"{text} {a['cpu'] - r['cpu']:+.1f}")
        print(f"  {n:>10,}: " + ", ".join(parts))

ratio("BM_PerCallMeshCompile", "BM_FullFrame", "one per-call mesh compile / one full fixed-path frame")
ratio("BM_FirstFrameCompileAll", "BM_PerCallMeshCompile", "all kept programs / one per-call compile")
print()
print("cpu ms is the benchmark thread's own time; llvmpipe rasterises on threads of its own, which only wall ms includes.")
PY

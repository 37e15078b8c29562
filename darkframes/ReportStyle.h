// SPDX-License-Identifier: MIT
#pragma once

namespace darkframes {

/// The style of the report. Colours are told apart without red and green, and none of them is the
/// only sign of anything.
inline constexpr auto ReportStyle = R"(
:root {
  color-scheme: light dark;
  --paper: #ffffff; --ink: #1c2733; --faint: #5b6773; --rule: #d5dbe1; --panel: #f4f6f8;
  --bars: #8fa3b8; --curve: #0b5cad; --limit: #b3400a;
  --new: #0b5cad; --known: #5b6773; --flickering: #8a3ea0; --clustered: #b3400a;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #14181d; --ink: #e3e8ee; --faint: #9ba7b4; --rule: #333c47; --panel: #1c222a;
    --bars: #5d7186; --curve: #6cb6ff; --limit: #ffab70;
    --new: #6cb6ff; --known: #9ba7b4; --flickering: #dda5ee; --clustered: #ffab70;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; padding: 1.5rem 1rem 3rem; max-width: 76rem; background: var(--paper);
  color: var(--ink); font: 16px/1.5 system-ui, "Segoe UI", "DejaVu Sans", sans-serif;
}
h1 { font-size: 1.6rem; line-height: 1.25; margin: 0 0 1rem; }
h2 { font-size: 1.15rem; margin: 2.2rem 0 .6rem; }
h3 { font-size: 1rem; margin: 0 0 .3rem; }
p { max-width: 46rem; }
figcaption, footer { color: var(--faint); font-size: .9rem; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: .15rem 1.2rem; margin: 0; }
dt { color: var(--faint); }
dd { margin: 0; overflow-wrap: anywhere; }
pre {
  margin: 1rem 0 0; padding: .6rem .8rem; background: var(--panel); border: 1px solid var(--rule);
  border-radius: 4px; white-space: pre-wrap; overflow-wrap: anywhere; font-size: .85rem;
}
.tiles { display: grid; grid-template-columns: repeat(auto-fit, minmax(9.5rem, 1fr)); gap: .6rem; }
.tiles div {
  padding: .6rem .8rem; background: var(--panel); border: 1px solid var(--rule); border-radius: 4px;
}
.tiles b { display: block; font-size: 1.35rem; line-height: 1.3; }
.tiles span { color: var(--faint); font-size: .85rem; }
.charts { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 27rem), 1fr)); gap: 1rem 2rem; }
.pair { display: flex; flex-wrap: wrap; gap: 0 3rem; }
.pair > section { min-width: 0; }
figure { margin: 0; max-width: 36rem; break-inside: avoid; }
figure.wide { max-width: 52rem; }
svg { display: block; width: 100%; height: auto; }
svg text { fill: var(--faint); font: 11px system-ui, "Segoe UI", "DejaVu Sans", sans-serif; }
.map text { font-size: 9px; }
.axis { stroke: var(--faint); }
.grid { stroke: var(--rule); }
.limit { stroke: var(--limit); stroke-width: 1.5; stroke-dasharray: 6 3; }
.bars { fill: var(--bars); }
.paper { fill: var(--paper); opacity: .85; }
.line { fill: none; stroke: var(--curve); stroke-width: 1.8; }
.line.limit { stroke: var(--limit); stroke-width: 1.5; }
.line.p0 { stroke: var(--ink); stroke-width: 2.2; }
.line.p1 { stroke: var(--clustered); }
.line.p2 { stroke: var(--new); stroke-dasharray: 9 3; }
.line.p3 { stroke: var(--flickering); stroke-dasharray: 2 3; }
.line.p4 { stroke: var(--known); stroke-dasharray: 9 3 2 3; }
.sensor { fill: var(--panel); stroke: var(--rule); }
.mark { stroke-width: 1; fill: none; }
.mark.new { fill: var(--new); }
.mark.known { stroke: var(--known); }
.mark.nothot { stroke: var(--known); stroke-width: 1.6; }
.mark.flickering { stroke: var(--flickering); }
.mark.clustered { fill: var(--clustered); stroke: var(--paper); stroke-width: .4; }
.legend { list-style: none; display: flex; flex-wrap: wrap; gap: .2rem 1.4rem; margin: .5rem 0 0; padding: 0; }
.legend li { display: flex; align-items: center; gap: .4rem; font-size: .9rem; }
.legend svg { width: 1rem; height: 1rem; flex: none; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; font-size: .9rem; font-variant-numeric: tabular-nums; }
th, td { padding: .2rem .8rem .2rem 0; text-align: right; border-bottom: 1px solid var(--rule); white-space: nowrap; }
th { color: var(--faint); font-weight: 600; }
th:first-child, td:first-child, .left { text-align: left; }
.left { padding-left: .8rem; }
footer { margin-top: 2.5rem; border-top: 1px solid var(--rule); padding-top: .6rem; }
@media (max-width: 30rem) {
  body { padding: 1rem .75rem 2rem; }
  dl { grid-template-columns: 1fr; }
  dd { margin-bottom: .4rem; }
  table { font-size: .82rem; }
  th, td { padding-right: .55rem; }
}
@media print {
  :root {
    color-scheme: light;
    --paper: #ffffff; --ink: #000000; --faint: #444444; --rule: #bbbbbb; --panel: #ffffff;
    --bars: #9aa7b5; --curve: #0b5cad; --limit: #b3400a;
    --new: #0b5cad; --known: #444444; --flickering: #8a3ea0; --clustered: #b3400a;
  }
  body { max-width: none; padding: 0; font-size: 10pt; }
  h2, h3 { break-after: avoid; }
  tr { break-inside: avoid; }
  tr:first-child { break-after: avoid; }
  .charts { grid-template-columns: 1fr 1fr; }
  .scroll { overflow: visible; }
  .pair table { break-inside: avoid; }
  figure { max-width: 11cm; }
  figure.wide { max-width: 14cm; }
}
)";

} // namespace darkframes

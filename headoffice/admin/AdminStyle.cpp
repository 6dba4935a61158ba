#include "headoffice/admin/AdminStyle.h"

namespace quillet::headoffice::admin {

const std::string_view AdminStyle = R"css(
:root { color-scheme: light dark;
  --page: #f4f6f8; --card: #ffffff; --text: #1b1f24; --soft: #545d68; --line: #d0d7de;
  --good: #116329; --bad: #b3261e; --answered: #2f6fb4; --longest: #6c92bd; --mean: #1b1f24;
  --link: #0b57a4; }
@media (prefers-color-scheme: dark) { :root {
  --page: #121518; --card: #1b2025; --text: #e8ebee; --soft: #a9b3bd; --line: #3b444d;
  --good: #7ee29a; --bad: #ff9a8f; --answered: #6aa9e9; --longest: #5f86b3; --mean: #f3f5f7;
  --link: #8cc0ff; } }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 1360px; padding: 16px 20px 40px; background: var(--page);
  color: var(--text); font: 15px/1.45 system-ui, "Segoe UI", Roboto, "Noto Sans", sans-serif; }
h1 { font-size: 24px; margin: 8px 0 0; }
h2 { font-size: 18px; margin: 0 0 10px; }
h3 { font-size: 15px; margin: 0 0 4px; }
p { margin: 0 0 10px; }
header p { color: var(--soft); margin: 2px 0 16px; }
a { color: var(--link); }
section { background: var(--card); border: 1px solid var(--line); border-radius: 8px;
  padding: 14px 16px 16px; margin: 0 0 16px; }
.soft { color: var(--soft); font-weight: normal; }
span.soft { white-space: nowrap; }
.good { color: var(--good); font-weight: 600; }
.bad { color: var(--bad); font-weight: 600; }
time { white-space: nowrap; }
dl { display: grid; grid-template-columns: repeat(auto-fill, minmax(170px, 1fr)); gap: 10px 20px;
  margin: 0 0 12px; }
.totals { grid-template-columns: repeat(auto-fill, minmax(150px, 1fr)); }
dl:last-child { margin-bottom: 0; }
dt { color: var(--soft); font-size: 13px; }
dd { margin: 0; font-size: 20px; font-variant-numeric: tabular-nums; }
dd .soft { font-size: 14px; }
meter { display: block; width: 100%; max-width: 150px; height: 12px; }
table { border-collapse: collapse; width: 100%; }
caption { text-align: left; color: var(--soft); padding: 0 0 6px; }
th, td { text-align: left; vertical-align: top; padding: 5px 14px 5px 0; overflow: clip;
  border-bottom: 1px solid var(--line); overflow-wrap: anywhere; }
th:last-child, td:last-child { padding-right: 0; }
tbody tr:last-child > * { border-bottom: 0; }
thead th { color: var(--soft); font-size: 13px; font-weight: 600; }
tbody th { font-weight: 600; min-width: 9.5em; }
.name { min-width: 13em; }
.when { min-width: 17em; }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
.charts { display: grid; grid-template-columns: 1fr 1fr; gap: 16px 28px; }
figure { margin: 0; min-width: 0; }
figcaption { color: var(--soft); font-size: 13px; display: flex; flex-wrap: wrap; gap: 2px 16px; }
figcaption svg { width: 16px; height: 14px; vertical-align: -2px; margin-right: 4px; }
.chart { display: block; width: 100%; height: auto; }
.chart text { fill: var(--soft); font-size: 13px; }
.grid { stroke: var(--line); }
.base { stroke: var(--soft); }
.answered { fill: var(--answered); }
.failed { fill: url(#hatching); stroke: var(--bad); }
.hatching { stroke: var(--bad); stroke-width: 1.6; }
.cross { fill: none; stroke: var(--bad); stroke-width: 2; }
.longest { fill: var(--longest); }
path.mean { fill: none; stroke: var(--mean); stroke-width: 2; }
circle.mean { fill: var(--mean); }
.hint { fill: transparent; }
details { margin-top: 10px; }
summary { cursor: pointer; color: var(--link); }
details table { margin-top: 8px; }
:focus-visible { outline: 2px solid var(--link); outline-offset: 2px; }
@media (max-width: 1250px) { .chart text { font-size: 17px; } }
@media (max-width: 1000px) { .chart text { font-size: 13px; } }
@media (max-width: 640px) {
  body { padding: 8px 10px 24px; }
  section { padding: 12px; }
  dl, .totals { grid-template-columns: repeat(auto-fill, minmax(125px, 1fr)); }
  .chart text { font-size: 20px; }
}
@media (max-width: 1000px) {
  .charts { grid-template-columns: 1fr; }
  table, tbody, tr, caption { display: block; }
  thead { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
  tbody tr { border-bottom: 1px solid var(--line); padding: 8px 0; }
  tbody tr:last-child { border-bottom: 0; padding-bottom: 0; }
  tbody tr > * { display: block; border: 0; padding: 1px 0; min-width: 0; }
  td[data-label]::before { content: attr(data-label) ": "; color: var(--soft); }
  td:empty { display: none; }
  .number { text-align: left; }
}
@media print { section { break-inside: avoid; } }
)css";

} // namespace quillet::headoffice::admin

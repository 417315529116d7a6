// The looks of the gallery page.
#pragma once

#include <string_view>

namespace host {

inline constexpr std::string_view kPageStyle = R"css(
:root {
  color-scheme: light dark;
  --ground: #f6f5f2; --card: #ffffff; --line: #dfdcd5; --text: #1d1f24; --soft: #5a5e68;
  --accent: #8a3b12; --code: #f1efea; --checker: #e3e3e3; --checker-ground: #ffffff;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ground: #14161a; --card: #1d2026; --line: #333842; --text: #eceae5; --soft: #a9aeb9;
    --accent: #f0a76a; --code: #15171c; --checker: #4a4d55; --checker-ground: #5d616a;
  }
}
* { box-sizing: border-box; }
html { scroll-padding-top: 1rem; -webkit-text-size-adjust: 100%; }
body {
  margin: 0; background: var(--ground); color: var(--text);
  font: 1rem/1.55 system-ui, sans-serif;
}
header, main, footer { max-width: 69rem; margin: 0 auto; padding: 0 1.25rem; }
header { padding-top: 3rem; }
h1 { margin: 0; font-size: clamp(1.9rem, 5vw, 2.9rem); line-height: 1.1; letter-spacing: -0.02em; }
h2 { margin: 3.5rem 0 1.25rem; font-size: 1.45rem; line-height: 1.25; letter-spacing: -0.01em; }
h3 { margin: 0; font-size: 1.15rem; line-height: 1.3; overflow-wrap: anywhere; }
p { margin: 0.4rem 0 0; }
.lead, .note, .declaration, footer { color: var(--soft); }
.lead { margin-top: 0.75rem; max-width: 42rem; font-size: 1.1rem; }
a { color: var(--accent); text-underline-offset: 0.2em; }
a:focus-visible { outline: 3px solid var(--accent); outline-offset: 2px; border-radius: 3px; }
nav { margin-top: 2rem; padding-top: 1.25rem; border-top: 1px solid var(--line); }
nav h2 { margin: 1rem 0 0.2rem; font-size: 1rem; letter-spacing: 0; }
nav h2:first-child { margin-top: 0; }
nav ul {
  display: flex; flex-wrap: wrap; gap: 0.15rem 1.1rem;
  margin: 0; padding: 0; list-style: none;
}
nav a { display: inline-block; padding: 0.2rem 0; overflow-wrap: anywhere; }
article {
  margin: 0 0 1.5rem; padding: 1.5rem; border: 1px solid var(--line); border-radius: 14px;
  background: var(--card);
}
code, .value { font-family: ui-monospace, monospace; }
code { font-size: 0.9rem; overflow-wrap: anywhere; white-space: pre-wrap; }
.declaration code { font-size: 0.82rem; }
.expression {
  margin: 0.9rem 0 0; padding: 0.7rem 0.9rem; border-left: 3px solid var(--accent);
  border-radius: 6px; background: var(--code);
}
.pictures {
  display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 20rem), 1fr));
  gap: 1.25rem; margin-top: 1.25rem;
}
figure { margin: 0; min-width: 0; }
figcaption { margin-bottom: 0.4rem; color: var(--soft); font-size: 0.9rem; }
img {
  display: block; max-width: 100%; height: auto; border-radius: 6px; outline: 1px solid var(--line);
  background: repeating-conic-gradient(var(--checker) 0 25%, var(--checker-ground) 0 50%)
    0 0 / 20px 20px;
}
.value {
  padding: 0.9rem 1rem; border-radius: 6px; background: var(--code); font-size: 1.05rem;
  overflow-wrap: anywhere; white-space: pre-wrap;
}
footer { margin-top: 3rem; padding-bottom: 3rem; font-size: 0.9rem; }
@media (max-width: 40rem) {
  header, main, footer { padding-left: 1rem; padding-right: 1rem; }
  header { padding-top: 2rem; }
  article { padding: 1rem; border-radius: 12px; }
}
@media print { article { break-inside: avoid; } nav { display: none; } }
)css";

}  // namespace host

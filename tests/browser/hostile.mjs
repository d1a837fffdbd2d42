// Texts that want to be taken for something else. Those that would run a script leave a mark in the page.

export const mark = "window.ran=(window.ran||0)+1";

export const hostileTexts = [
  `<img src=x onerror="${mark}">`,
  `<script>${mark}</script>`,
  `</td></tr></table></center><script>${mark}</script>`,
  `</a><a href="javascript:${mark}">away</a>`,
  `<a href="" onclick="${mark}">strange</a>`,
  `<svg onload="${mark}"><script>${mark}</script></svg>`,
  `<b onmouseover="${mark}" onclick="${mark}">bold</b>`,
  `<details open ontoggle="${mark}">x</details>`,
  `<input name="Remark" autofocus onfocus="${mark}">`,
  `<form name="StepForm" action="https://example.invalid/"><button>send</button></form>`,
  `<img name="StepForm"><img id="buttoncon"><img id="Drawing">`,
  `<iframe srcdoc="<script>parent.${mark}</script>"></iframe><iframe src="javascript:parent.${mark}"></iframe>`,
  `<object data="https://example.invalid/x.svg"></object><embed src="https://example.invalid/x.svg">`,
  `<link rel="stylesheet" href="https://example.invalid/x.css"><style>body{display:none}</style>`,
  `<meta http-equiv="refresh" content="0;url=about:blank">`,
  `<base href="https://example.invalid/">`,
  `<template><script>${mark}</script></template>`,
  `</script><script>${mark}</script>`,
  `</template><img src=x onerror="${mark}">`,
  `<!--<script>`,
  `<!-- <img src=x onerror="${mark}">`,
  `--><img src=x onerror="${mark}">`,
  `<plaintext>`,
  `<textarea><title><noscript><xmp>`,
  `<table><tr><td><select><option>`,
  `"><img src=x onerror="${mark}">`,
  `';${mark};'`,
  `";${mark};"`,
  `\\';${mark};//`,
  `\\";${mark};//`,
  `\\\\';${mark};//`,
  `&#39;;${mark};&#39;`,
  `&quot;&gt;&lt;script&gt;${mark}&lt;/script&gt;`,
  `&amp;#39;&amp;lt;`,
  "\r\n" + mark + "\r\n//",
  "first\r\nsecond\nthird\rfourth\n\r\n",
  `\u2028${mark}\u2029`,
  "`${" + mark + "}`",
  "${" + mark + "}{{" + mark + "}}<%= x %>",
  "  blanks\tand tabs \f ",
  "审批“引号” '单' \"双\" \\反斜杠\\ 😀 e\u0301 \u200f\u0627\u0644",
  "]]>\u0085\u00a0\ufeff\u0001\u007f",
  "\\u003c\\x3C\\n\\",
  "a=b c=d `e`",
  "0",
];

/** Texts of awkward pieces, the same in every run. */
export function mixedTexts(count) {
  const pieces = ["'", '"', "\\", "\r", "\n", "\r\n", "<", ">", "&", "&#39;", "</script>", "<!--", "-->", "\u2028", "\u2029",
                  " ", "\t", "`", "=", "/", ";", mark, "中", "😀", "a", "\\n", "\\x3C", "&lt"];
  let state = 20260131;
  const next = (below) => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor((state / 2 ** 32) * below);
  };
  return Array.from({ length: count }, () => Array.from({ length: 1 + next(12) }, () => pieces[next(pieces.length)]).join(""));
}

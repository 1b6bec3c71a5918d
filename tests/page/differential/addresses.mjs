// Compares the addresses that `quenlar analyze` makes with those of whatwg-url, on random and hostile input.
//
// usage: node addresses.mjs FOLDER QUENLAR [CASES [SEED]]
//
// FOLDER is where "npm install whatwg-url" was run. Exits with 1 when a case is answered in another way. mayDiffer tells
// where the reference is known to err, and where the system's tables of host names are smaller.
import { spawnSync } from "node:child_process";
import { createRequire } from "node:module";
import path from "node:path";

const [folder, program, cases = "1000", firstSeed = "1"] = process.argv.slice(2);
const { URL } = createRequire(path.join(path.resolve(folder), "package.json"))("whatwg-url");

let state = Number(firstSeed) >>> 0;
function below(limit) {
  state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
  return Math.floor((state / 4294967296) * limit);
}
const chance = (percent) => below(100) < percent;
const pick = (choices) => choices[below(choices.length)];
const many = (most, make) => Array.from({ length: below(most + 1) }, make).join("");

// Not here: symbols and characters of the last years, which libidn2 does not take in hosts.
const letters = ["a", "B", "z", "0", "9", "-", "_", ".", "\u00e4", "\u00dc", "\u00df", "\u4e2d", "\u044f", "\uff21", "\u3002"];
const hostile = [
  "\t", "\n", "\r", "\0", "\x01", " ", "\"", "#", "%", "%2", "%zz", "%2e", "%2E", "%41", "%00", "%20", "%ff", "%C3%A4", "&",
  "'", "+", "/", "\\", ":", ";", "<", "=", ">", "?", "@", "[", "]", "^", "`", "{", "|", "}", "~", "\x7f", "\u0080",
  "\u00a0", "\ufeff", "\ufffd", "\u{1f600}", "..", ".", "//", "::", "xn--",
];
const number = () =>
  pick([
    () => String(below(300)), () => "0" + below(400).toString(8), () => "0x" + below(300).toString(16), () => "0X",
    () => String(below(4294967296)), () => "0x" + below(4294967296).toString(16), () => "00", () => "09", () => "256",
    () => "65536", () => "4294967296", () => "99999999999999999999",
  ])();
const piece = () => (chance(50) ? "0" : below(65536).toString(16));
const six = () => {
  const parts = Array.from({ length: below(9) }, piece);
  if (chance(60)) parts.splice(below(parts.length + 1), 0, "");
  if (chance(20)) parts.push(Array.from({ length: 3 + below(2) }, () => String(below(260))).join("."));
  const text = parts.join(":");
  return "[" + (text.startsWith(":") ? ":" + text : text) + (text.endsWith(":") && chance(70) ? ":" : "") + pick(["]", "]", "]", ""]);
};
const label = () => many(4, () => pick(letters)) || "h";
const host = () =>
  pick([
    () => "www.example.org", () => "h", () => Array.from({ length: 1 + below(5) }, number).join(".") + pick(["", "."]), six,
    () => label() + "." + label(), () => "m\u00fcnchen.de", () => label() + pick(hostile) + label(), () => "",
  ])();
const text = () => many(5, () => (chance(70) ? pick(["a", "b", "c.html", "1"]) : pick(hostile)));
const pathText = () =>
  many(6, () => pick(["/", "/", "\\"]) + pick([text, text, () => "..", () => ".", () => "%2e", () => ".%2E", () => "...", () => ""])());
const authority = () =>
  (chance(15) ? text() + pick(["", ":" + text()]) + "@" : "") + host() +
  (chance(25) ? ":" + pick(["", "80", "443", "0", "0080", "65535", "65536", "8x", "8080", "-1", " 80"]) : "");
const tail = () => pathText() + (chance(30) ? "?" + text() : "") + (chance(20) ? "#" + text() : "");
const scheme = () => pick(["http:", "https:", "HTTP:", "hTTps:", "http:", "ftp:", "mailto:", "x:", "ht\ttp:", "1:", ""]);
function address() {
  let made = pick([
    () => scheme() + pick(["//", "//", "//", "/", "", "///", "\\\\", "/\\"]) + authority() + tail(),
    () => "//" + authority() + tail(), tail, () => text() + tail(), () => pick(["?", "#", "", ".", "..", "./", "../"]) + text(),
  ])();
  while (chance(10)) {
    const at = below(made.length + 1);
    made = made.slice(0, at) + pick(hostile) + made.slice(at);
  }
  return made.toWellFormed();
}

function expected(text, base) {
  try {
    const url = new URL(text, base ?? undefined);
    url.hash = "";
    return url.protocol === "http:" || url.protocol === "https:" ? url.href : null;
  } catch {
    return null;
  }
}

function mayDiffer(text, wanted, found) {
  // The standard takes every ASCII domain as it is; the reference still refuses labels "xn--..." that mean nothing.
  if (wanted === null) return /xn--/.test(found);
  // The reference loses what follows a character beyond U+FFFF in a user name or a password.
  if (found !== null) return /[\u{10000}-\u{10ffff}][^]*@/u.test(text) && /\/\/[^/]*%EF%BF%BD[^/]*@/.test(wanted);
  // Beside a character beyond ASCII, libidn2 refuses hyphens at the ends of a label and in its third and fourth place,
  // and characters that IDNA 2008 does not have.
  return /[^\x00-\x7f]|%[89a-f]/i.test(text) && /\/\/([^/]*[@.])?(xn--|-|..--|[^/.]*-[./:])/.test(wanted);
}

const bases = ["http://example.org/a/b/c?d", "https://u:p@h:8080/x/../y/", "http://[::1]", "https://h/?q", null];
let wrong = 0;
let unlike = 0;
for (let begin = 0; begin < Number(cases); begin += 10000) {
  const requests = Array.from({ length: Math.min(10000, Number(cases) - begin) }, () => ({ url: address(), base: pick(bases) }));
  const input = requests.map((request) => JSON.stringify(request) + "\n").join("");
  const run = spawnSync(program, ["analyze", "--jsonl"], { input, encoding: "utf8", maxBuffer: 1 << 30 });
  const lines = run.stdout.split("\n");
  requests.forEach(({ url, base }, i) => {
    const found = JSON.parse(lines[i]).url;
    const wanted = expected(url, base);
    if (found === wanted) return;
    if (mayDiffer(url, wanted, found)) {
      unlike += 1;
      return;
    }
    wrong += 1;
    console.log(JSON.stringify({ url, base, wanted, found: JSON.parse(lines[i]) }));
  });
}
console.log(`${cases} cases, seed ${firstSeed}: ${wrong} answered in another way, ${unlike} where the tables of hosts differ`);
process.exit(wrong ? 1 : 0);

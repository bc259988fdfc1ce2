// The bot in a browser. The page holds no state of its own beyond what the
// bot sends: the slots, each view's lines, the user lists and the status
// line. The token goes in the WebSocket's first message, never in an address.
// The bot speaks as to `corvantide tail`: JSON objects, one a line, several
// lines to a message; requests are the steering verbs as the terminal sends
// them, {"args": [...]}.
"use strict";

const $ = (id) => document.getElementById(id);
const MAX_LINES = 1000;
const decoder = new TextDecoder();

const state = {
  socket: null,
  token: sessionStorage.getItem("corvantide-token") || "",
  slots: [],           // [{slot, profile, online, channel, users}]
  current: "",         // profile on screen; "" is the console
  views: new Map(),    // "profile view" -> element holding the lines
  users: new Map(),    // profile -> users message
  unseen: new Set(),   // profiles with lines not looked at
  refused: false,
};

// Product and flag icons, drawn as small badges from the list's icon keys.
const PRODUCTS = {
  STAR: ["SC", "#3a6fb0"], SEXP: ["BW", "#5b4aa8"], SSHR: ["SS", "#3a6fb0"], JSTR: ["JS", "#3a6fb0"],
  W2BN: ["W2", "#a0522d"], DRTL: ["D1", "#8b1a1a"], DSHR: ["DS", "#8b1a1a"], D2DV: ["D2", "#a11b1b"],
  D2XP: ["LD", "#6b1010"], WAR3: ["W3", "#2e7d32"], W3XP: ["TF", "#1b5e20"], CHAT: ["CH", "#607d8b"],
  Operator: ["@", "#b8860b"], Representative: ["B", "#1565c0"], Squelched: ["×", "#616161"],
  UDP: ["UDP", "#795548"], Unknown: ["?", "#555"],
};
const PREFIXES = [["SC", "STAR"], ["W2", "W2BN"], ["D1", "DRTL"], ["WX", "W3XP"], ["W3", "WAR3"]];
const PINGS = { Clear: [0, "#9e9e9e"], Green: [6, "#3ecf5a"], Lime: [5, "#a5e22e"], Yellow: [4, "#f0d000"],
  Orange: [3, "#ff9800"], Red: [2, "#f44336"], Maroon: [1, "#8b0000"], UDP: [0, "#795548"] };

function productIcon(key) {
  let entry = PRODUCTS[key];
  if (!entry) {
    const prefix = PREFIXES.find(([p]) => key.startsWith(p));
    // Statistics icons (ladder ranks, wins, levels) keep their product's badge.
    entry = prefix ? PRODUCTS[prefix[1]] : [key.slice(0, 3) || "?", "#555"];
  }
  const icon = document.createElement("span");
  icon.className = "icon";
  icon.textContent = entry[0];
  icon.style.background = entry[1];
  icon.title = key;
  return icon;
}

function pingIcon(key) {
  const [bars, colour] = PINGS[key] || [0, "#777"];
  const icon = document.createElement("span");
  icon.className = "bars";
  icon.style.color = colour;
  icon.title = key;
  for (let i = 1; i <= 6; i++) {
    const bar = document.createElement("i");
    bar.style.height = 2 * i + "px";
    bar.style.opacity = i <= bars ? "1" : "0.2";
    icon.append(bar);
  }
  return icon;
}

// --- connection ---------------------------------------------------------

function open() {
  const scheme = location.protocol === "https:" ? "wss:" : "ws:";
  const socket = new WebSocket(`${scheme}//${location.host}/socket`);
  state.socket = socket;
  state.refused = false;
  socket.onopen = () => socket.send(JSON.stringify({ event: "hello", token: state.token }));
  socket.binaryType = "arraybuffer";
  socket.onmessage = (event) => {
    const text = typeof event.data === "string" ? event.data : decoder.decode(event.data);
    for (const line of text.split("\n")) if (line) receive(JSON.parse(line));
  };
  socket.onclose = () => {
    if (state.socket !== socket) return;
    state.socket = null;
    if (state.refused) return;
    notice("The bot is out of reach; trying again ...");
    setTimeout(() => { if (!state.socket) open(); }, 3000);
  };
}

function request(...args) {
  if (state.socket && state.socket.readyState === WebSocket.OPEN) state.socket.send(JSON.stringify({ args }));
}

function receive(m) {
  switch (m.event) {
    case "welcome":
      sessionStorage.setItem("corvantide-token", state.token);
      $("login").hidden = true;
      $("bot").hidden = false;
      notice("");
      for (const view of state.views.values()) view.replaceChildren();
      state.users.clear();
      break;
    case "refused":
      state.refused = true;
      sessionStorage.removeItem("corvantide-token");
      $("bot").hidden = true;
      $("login").hidden = false;
      $("login-error").textContent = m.text;
      break;
    case "slots": showSlots(m); break;
    case "status": $("status").textContent = m.text; break;
    case "line": appendLine(m.profile, m.view, m.runs); break;
    case "notice": appendLine(m.profile || "", "chat", [{ text: m.text, color: "#999999", italic: true }]); break;
    case "users": state.users.set(m.profile, m); if (m.profile === state.current) showUsers(); break;
    case "skipped": skipped(m.lines); break;
    case "reply": notice((m.status ? m.err : m.out).trim()); break;
  }
}

// --- views --------------------------------------------------------------

function viewOf(profile, view) {
  const key = `${profile} ${view}`;
  let element = state.views.get(key);
  if (!element) {
    element = document.createElement("div");
    state.views.set(key, element);
  }
  return element;
}

function lineElement(runs) {
  const line = document.createElement("div");
  line.className = "line";
  for (const run of runs) {
    const span = document.createElement("span");
    span.textContent = run.text;
    span.style.color = run.color;
    span.className = [run.bold && "b", run.italic && "i", run.underline && "u", run.strike && "s"]
      .filter(Boolean).join(" ");
    line.append(span);
  }
  return line;
}

// Lines of a profile the page has no tab for yet wait in its view until the
// tab comes.
function appendLine(profile, view, runs) {
  const element = viewOf(profile, view);
  const shown = element.parentElement;
  const pinned = shown && shown.scrollTop + shown.clientHeight >= shown.scrollHeight - 4;
  element.append(lineElement(runs));
  if (element.childElementCount > MAX_LINES) element.firstElementChild.remove();
  if (shown) {
    if (pinned) shown.scrollTop = shown.scrollHeight;
  } else if (profile !== state.current && view === "chat" && !state.unseen.has(profile)) {
    state.unseen.add(profile);
    drawTabs();
  }
  if (view === "whisper" && profile === state.current) $("whisper").hidden = false;
}

function skipped(count) {
  const line = document.createElement("div");
  line.className = "line skipped";
  line.textContent = `... ${count} lines skipped`;
  viewOf(state.current, "chat").append(line);
}

// --- tabs, list, tools --------------------------------------------------

function showSlots(m) {
  state.slots = m.slots;
  document.documentElement.style.setProperty("--back", m.back);
  document.documentElement.style.setProperty("--fore", m.fore);
  if (state.current && !m.slots.some((s) => s.profile === state.current)) select("");
  const names = $("load-name");
  names.replaceChildren(...m.profiles.map((p) => new Option(p, p)));
  names.hidden = $("load").hidden = m.profiles.length === 0;
  drawTabs();
  drawTools();
  if (state.current) showUsers();
}

function drawTabs() {
  const tabs = [{ profile: "", online: false }, ...state.slots].map((s) => {
    const tab = document.createElement("button");
    tab.type = "button";
    tab.setAttribute("role", "tab");
    tab.setAttribute("aria-selected", String(s.profile === state.current));
    tab.dataset.profile = s.profile;
    if (s.online) tab.classList.add("online");
    if (state.unseen.has(s.profile)) tab.classList.add("talk");
    const dot = document.createElement("span");
    dot.className = "dot";
    tab.append(dot, s.profile || "Console");
    tab.title = !s.profile ? "The bot's console"
      : s.online ? `Connected in channel: ${s.channel}.` : `${s.profile} is not connected!`;
    tab.onclick = () => select(s.profile);
    return tab;
  });
  $("tabs").replaceChildren(...tabs);
}

function currentSlot() {
  return state.slots.find((s) => s.profile === state.current);
}

function drawTools() {
  const slot = currentSlot();
  for (const id of ["connect", "disconnect", "unload"]) $(id).disabled = !slot;
  if (slot) {
    $("connect").disabled = slot.online;
    $("disconnect").disabled = !slot.online;
  }
  $("line").disabled = !slot;
  $("line").placeholder = slot ? `Type a line or a /command for ${slot.profile}` : "Choose a profile's tab to type";
}

function select(profile) {
  state.current = profile;
  state.unseen.delete(profile);
  const chat = $("chat");
  const whisper = $("whisper");
  chat.replaceChildren(viewOf(profile, "chat"));
  whisper.replaceChildren(viewOf(profile, "whisper"));
  whisper.hidden = viewOf(profile, "whisper").childElementCount === 0;
  chat.scrollTop = chat.scrollHeight;
  whisper.scrollTop = whisper.scrollHeight;
  drawTabs();
  drawTools();
  showUsers();
}

function showUsers() {
  const list = $("users");
  const slot = currentSlot();
  const m = state.users.get(state.current);
  if (!slot) {
    $("list-heading").textContent = "";
    list.replaceChildren();
    return;
  }
  if (!slot.online || !m) {
    $("list-heading").textContent = " -- Disconnected -- ";
    list.replaceChildren();
    return;
  }
  $("list-heading").textContent = ` -- ${m.channel} (${m.items.length}) -- `;
  list.replaceChildren(...m.items.map((u) => {
    const item = document.createElement("li");
    const name = document.createElement("span");
    name.className = "name";
    name.textContent = u.n;
    name.style.color = u.c;
    const ping = document.createElement("span");
    ping.className = "ping";
    ping.textContent = u.p;
    item.title = `${u.n}\nFlags: ${u.f || "none"}\nPing: ${u.p}ms`;
    item.append(productIcon(u.i), name, ping, pingIcon(u.pi));
    return item;
  }));
}

function notice(text) {
  $("notice").textContent = text;
}

// --- what the user does -------------------------------------------------

$("login").onsubmit = (event) => {
  event.preventDefault();
  state.token = $("token").value.trim();
  $("token").value = "";
  $("login-error").textContent = "";
  if (state.socket) state.socket.close();
  open();
};

$("send").onsubmit = (event) => {
  event.preventDefault();
  const slot = currentSlot();
  const line = $("line").value;
  if (!slot || !line) return;
  request("send", slot.profile, line);
  $("line").value = "";
};

for (const kind of ["connect", "disconnect", "unload"]) {
  $(kind).onclick = () => { const slot = currentSlot(); if (slot) request(kind, slot.profile); };
}
$("load").onclick = () => { if ($("load-name").value) request("load", $("load-name").value); };
$("show-users").onclick = () => document.body.classList.toggle("users-open");

select("");
if (state.token) open();

"use strict";

(() => {
  const root = document.documentElement;
  root.classList.add("js");

  // Pages from files may have no storage: reading it may throw.
  const remembered = {
    read() {
      try {
        return localStorage.getItem("theme");
      } catch {
        return null;
      }
    },
    write(theme) {
      try {
        localStorage.setItem("theme", theme);
      } catch {
        // The choice then lasts as long as the page.
      }
    },
  };

  const systemIsDark = matchMedia("(prefers-color-scheme: dark)");
  const useTheme = (theme) => {
    if (theme === "light" || theme === "dark") root.dataset.theme = theme;
  };
  const isDark = () => (root.dataset.theme || (systemIsDark.matches ? "dark" : "light")) === "dark";
  useTheme(remembered.read());  // before anything is drawn

  function startTheme() {
    const button = document.getElementById("page_theme");
    const show = () => {
      button.textContent = isDark() ? "Light" : "Dark";
      button.setAttribute("aria-label", `${button.textContent} colours`);
    };
    button.addEventListener("click", () => {
      useTheme(isDark() ? "light" : "dark");
      remembered.write(root.dataset.theme);
      show();
    });
    systemIsDark.addEventListener("change", show);
    show();
  }

  function startDividers() {
    for (const input of document.querySelectorAll(".compare input")) {
      const move = () => {
        input.parentElement.style.setProperty("--split", `${input.value}%`);
        input.setAttribute("aria-valuetext", `${Math.round(input.value)} % before`);
      };
      input.addEventListener("input", move);
      move();
    }
  }

  // For browsers that keep the clipboard from pages of files.
  function copyBySelection(text) {
    const area = document.createElement("textarea");
    area.value = text;
    area.readOnly = true;
    area.className = "unseen";
    document.body.append(area);
    area.select();
    let isCopied = false;
    try {
      isCopied = document.execCommand("copy");
    } catch {
      // Not copied.
    }
    area.remove();
    return isCopied;
  }

  async function copyText(text) {
    try {
      await navigator.clipboard.writeText(text);
      return true;
    } catch {
      return copyBySelection(text);
    }
  }

  async function copyFrom(button) {
    const code = button.closest(".line").querySelector("code");
    const isCopied = await copyText(code.textContent);
    button.focus({ preventScroll: true });
    if (!isCopied) getSelection().selectAllChildren(code);
    const said = document.getElementById("page_said");
    said.textContent = isCopied ? "Copied" : "Selected: copy it with the keyboard";
    button.textContent = isCopied ? "Copied" : "Selected";
    button.classList.add("done");
    clearTimeout(button.timer);
    button.timer = setTimeout(() => {
      button.textContent = "Copy";
      button.classList.remove("done");
      said.textContent = "";
    }, 2000);
  }

  // Nobody needs to know which names end in QRZ, or how the page spells a colour.
  const plain = (text) => text.toLowerCase().replaceAll("qrz", "").replaceAll("colour", "color")
    .replaceAll("grey", "gray");

  function findable(article, title) {
    const parts = article.querySelectorAll("h3, .summary, .note, .arguments dt, .arguments dd");
    return plain([title, ...Array.from(parts, (part) => part.textContent)].join("\n"));
  }

  function startSearch() {
    const input = document.getElementById("page_search");
    const count = document.getElementById("page_count");
    const nothing = document.getElementById("page_nothing");
    const links = document.querySelectorAll(".groups li");
    const groups = Array.from(document.querySelectorAll("main section"), (section, at) => {
      const title = section.querySelector("h2").textContent;
      const tiles = section.querySelectorAll(".sheet li");
      const members = Array.from(section.querySelectorAll("article"), (article, tile) =>
        ({ article, tile: tiles[tile], text: findable(article, title) }));
      return { section, link: links[at], members };
    });
    const all = groups.reduce((sum, group) => sum + group.members.length, 0);

    const filter = () => {
      const words = plain(input.value).split(/\s+/).filter((word) => word !== "");
      let matches = 0;
      for (const { section, link, members } of groups) {
        let matchesHere = 0;
        for (const { article, tile, text } of members) {
          const isMatch = words.every((word) => text.includes(word));
          article.hidden = tile.hidden = !isMatch;
          matchesHere += isMatch;
        }
        section.hidden = link.hidden = matchesHere === 0;
        link.querySelector("span").textContent = matchesHere;
        matches += matchesHere;
      }
      count.textContent = words.length === 0 ? `${all} members` : `${matches} of ${all} members`;
      nothing.hidden = matches > 0 || all === 0;
      document.getElementById("page_query").textContent = input.value.trim();
    };

    // The address names the search, so that it can be sent to others.
    const search = (query) => {
      input.value = query;
      filter();
    };
    const showAddress = () => {
      const [page] = location.href.split("#");
      const query = input.value.trim();
      try {
        history.replaceState(null, "", query ? `${page}#search=${encodeURIComponent(query)}` : page);
      } catch {
        // Some browsers refuse when it changes often: it follows with the next letter.
      }
    };
    const readAddress = () => {
      let fragment = location.hash.slice(1);
      try {
        fragment = decodeURIComponent(fragment);
      } catch {
        // Taken as it stands.
      }
      if (fragment.startsWith("search=")) {
        search(fragment.slice("search=".length));
        return;
      }
      const target = document.getElementById(fragment);
      if (target?.closest("[hidden]")) {
        search("");
        target.scrollIntoView();
      }
    };
    const clear = () => {
      search("");
      showAddress();
      input.focus();
    };

    // What was found begins above, if one had scrolled on.
    const showResults = () => {
      const main = document.querySelector("main");
      if (main.getBoundingClientRect().top < 0) main.scrollIntoView({ behavior: "instant" });
    };
    input.addEventListener("input", () => {
      filter();
      showAddress();
      showResults();
    });
    input.form.addEventListener("submit", (event) => event.preventDefault());
    document.getElementById("page_clear").addEventListener("click", clear);
    document.addEventListener("keydown", (event) => {
      if (event.key === "Escape" && document.activeElement === input) {
        event.preventDefault();
        clear();
      }
      const isWriting = event.target.closest("input:not([type=range]), textarea");
      if (event.key === "/" && !isWriting && !event.ctrlKey && !event.metaKey && !event.altKey) {
        event.preventDefault();
        input.focus();
        input.select();
      }
    });
    addEventListener("hashchange", readAddress);
    filter();
    readAddress();
  }

  // On paper everything is open.
  function startPrinting() {
    let opened = [];
    addEventListener("beforeprint", () => {
      opened = Array.from(document.querySelectorAll("details:not([open])"));
      for (const details of opened) details.open = true;
    });
    addEventListener("afterprint", () => {
      for (const details of opened) details.open = false;
    });
  }

  document.addEventListener("DOMContentLoaded", () => {
    startTheme();
    startDividers();
    startSearch();
    startPrinting();
    for (const button of document.querySelectorAll(".copy")) {
      button.addEventListener("click", () => copyFrom(button));
    }
  });
})();

// The documentation as one HTML page.

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "appletctl/commands/files/documented.h"
#include "appletctl/draw/xml.h"

#include <cctype>
#include <functional>
#include <map>

namespace appletctl {
namespace {

constexpr const char* pageHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Parameters</title>
<style>
:root { color-scheme: light dark; --back: #fff; --text: #1b1b1b; --faint: #5c5c5c; --line: #d5d5d5; --link: #0b5cad;
  --mark: #fff3c4; }
@media (prefers-color-scheme: dark) {
  :root { --back: #16181c; --text: #e4e4e4; --faint: #a3a8b0; --line: #3a3f47; --link: #7db7ff; --mark: #3d3510; }
}
* { box-sizing: border-box; }
html { scroll-padding-top: 4.5em; }
body { font-family: sans-serif; line-height: 1.45; margin: 0; color: var(--text); background: var(--back);
  display: grid; grid-template: "header header" auto "nav main" auto / 18em minmax(0, 1fr); }
a { color: var(--link); text-decoration: none; } a:hover { text-decoration: underline; }
header { grid-area: header; position: sticky; top: 0; z-index: 1; display: flex; flex-wrap: wrap; gap: 0.5em 1.5em;
  align-items: center; padding: 0.6em 1.2em; background: var(--back); border-bottom: 1px solid var(--line); }
h1 { font-size: 1.3em; margin: 0; }
input { font: inherit; padding: 0.3em 0.5em; width: 20em; max-width: 100%; color: inherit; background: var(--back);
  border: 1px solid var(--line); border-radius: 4px; }
#count { color: var(--faint); }
nav { grid-area: nav; position: sticky; top: 3.6em; align-self: start; max-height: calc(100vh - 3.6em);
  overflow: auto; padding: 1em 0.5em 1em 1.2em; font-size: 0.9em; }
nav ul { list-style: none; margin: 0; padding: 0; } nav li { margin: 0.25em 0; }
nav summary { cursor: pointer; } nav details li { margin-left: 1.2em; overflow-wrap: anywhere; }
main { grid-area: main; padding: 0 1.5em 4em; max-width: 60em; overflow-wrap: anywhere; }
h2 { color: var(--faint); font-size: 1.1em; margin: 2em 0 0; border-bottom: 1px solid var(--line); }
h3 { margin: 1.5em 0 0.2em; font-size: 1.05em; overflow-wrap: anywhere; } h3 a { color: inherit; }
h3 small { color: var(--faint); font-weight: normal; }
article:target h3 { background: var(--mark); }
p { margin: 0.3em 0; }
dl { display: grid; grid-template-columns: 11em minmax(0, 1fr); margin: 0.2em 0; gap: 0.1em 1em; font-size: 0.9em; }
dt { color: var(--faint); } dd { margin: 0; overflow-wrap: anywhere; }
table { border-collapse: collapse; } td, th { text-align: left; padding: 0.2em 1.5em 0.2em 0; }
@media (max-width: 50em) {
  body { display: block; }
  nav { position: static; max-height: none; }
  main { padding: 0 1.2em 4em; }
  dl { grid-template-columns: 1fr; } dd { margin-left: 1em; }
}
@media print { header, nav { display: none; } body { display: block; } }
</style>
</head>
<body>
<header><h1>Parameters</h1>
<input id="search" type="search" placeholder="name, text, unit, ..." aria-label="Search" autofocus>
<span id="count"></span></header>
)";

constexpr const char* pageTail = R"(<script>
const search = document.getElementById("search");
const articles = [...document.querySelectorAll("article")];
// A search for a parameter does not find all those that it moves.
const texts = new Map(articles.map(one => [one,
  [...one.querySelectorAll("h3, p, .own")].map(part => part.textContent).join(" ").toLowerCase()]));
const entries = new Map([...document.querySelectorAll("nav a")].map(link => [link.hash.slice(1), link.closest("li")]));
function show() {
  const words = search.value.toLowerCase().split(/\s+/);
  let count = 0;
  for (const group of document.querySelectorAll("section.group")) {
    let any = false;
    for (const parameter of group.querySelectorAll("article")) {
      parameter.hidden = !words.every(word => texts.get(parameter).includes(word));
      entries.get(parameter.id).hidden = parameter.hidden;
      any = any || !parameter.hidden;
      count += parameter.hidden ? 0 : 1;
    }
    group.hidden = !any;
    entries.get(group.id).hidden = !any;
  }
  document.getElementById("count").textContent = count + " of " + articles.length;
}
search.addEventListener("input", show);
// A link may lead to what the search has hidden.
addEventListener("hashchange", () => {
  const target = document.getElementById(location.hash.slice(1));
  if (!target || target.offsetParent) return;
  search.value = "";
  show();
  target.scrollIntoView();
});
show();
</script>
</body>
</html>
)";

/** Text with a link on each parameter name. */
class Linker {
public:
    explicit Linker(const std::vector<Documented>& rows) {
        for (const Documented& row : rows)
            m_names.insert(row.parameter->name);
    }

    std::string linked(const std::string& text, const std::string& own) const {
        std::string result;
        for (std::size_t position = 0; position < text.size();) {
            std::size_t end = position;
            while (end < text.size() && isOfName(text[end]))
                ++end;
            if (end == position) ++end;
            const std::string part = text.substr(position, end - position);
            result += m_names.contains(part) && part != own ? linkTo(part) : part;
            position = end;
        }
        return result;
    }

private:
    static bool isOfName(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }
    static std::string linkTo(const std::string& name) {
        return "<a href=\"#" + name + "\">" + name + "</a>";
    }

    std::set<std::string> m_names;
};

std::string article(const Documented& row, const Linker& linker) {
    const std::string own = row.parameter->name, name = xml::escaped(own);
    const auto linked = [&](const std::string& text) { return linker.linked(xml::escaped(text), own); };
    std::string text = "<article" + xml::attribute("id", name) + ">\n<h3><a href=\"#" + name + "\">" + name +
                       "</a> <small>" + xml::escaped(row.parameter->label()) + "</small></h3>\n";
    if (!row.explanation.empty()) text += "<p>" + linked(row.explanation) + "</p>\n";
    text += "<dl>\n";
    const char* title = "";
    for (const DocumentedLine& line : row.lines) {
        const bool isSame = std::string_view(title) == line.title;
        title = line.title;
        text += std::string("<dt>") + (isSame ? "" : title) + "</dt><dd" +
                (line.isAboutOthers ? "" : xml::attribute("class", "own")) + ">" + linked(line.text) +
                "</dd>\n";
    }
    return text + "</dl>\n</article>\n";
}

/** The parameters of one group; they are consecutive. */
struct Group {
    std::string id, path;
    std::vector<const Documented*> rows;
};

std::vector<Group> groupsOf(const std::vector<Documented>& rows) {
    std::vector<Group> groups;
    for (const Documented& row : rows) {
        const std::string path = row.parameter->path();
        if (groups.empty() || groups.back().path != path)
            groups.push_back({"group-" + numberText(groups.size() + 1), path, {}});
        groups.back().rows.push_back(&row);
    }
    return groups;
}

std::string contents(const std::vector<Group>& groups) {
    std::string text = "<nav aria-label=\"Contents\"><ul>\n";
    for (const Group& group : groups) {
        text += "<li><details><summary><a href=\"#" + group.id + "\">" + xml::escaped(group.path) +
                "</a></summary><ul>\n";
        for (const Documented* row : group.rows) {
            const std::string name = xml::escaped(row->parameter->name);
            text += "<li><a href=\"#" + name + "\">" + name + "</a></li>\n";
        }
        text += "</ul></details></li>\n";
    }
    return text + "<li><a href=\"#codes\">Result codes</a></li>\n</ul></nav>\n";
}

/** The codes of refusals, and the number of parameters that answer with each. */
std::string codesTable(const std::vector<Documented>& rows) {
    std::map<int, std::size_t, std::greater<>> counts;
    for (const Documented& row : rows)
        for (const int code : row.codes)
            ++counts[code];
    std::string text =
        "<section id=\"codes\">\n<h2>Result codes</h2>\n<p>What setters answered to values beyond the "
        "limits or off the grid and to every entry, in the state in which this page was made.</p>\n<table>\n"
        "<tr><th>code</th><th>symbol</th><th>meaning</th><th>parameters</th></tr>\n";
    for (const auto& [code, count] : counts) {
        const nlohmann::ordered_json words = codeAsJson(code);
        text += "<tr><td>" + numberText(code) + "</td><td>" + xml::escaped(words.value("symbol", "")) +
                "</td><td>" + xml::escaped(words.value("meaning", "")) + "</td><td>" + numberText(count) +
                "</td></tr>\n";
    }
    return text + "</table>\n</section>\n";
}

} // namespace

std::string documentationPage(const std::vector<Documented>& rows) {
    const Linker linker(rows);
    const std::vector<Group> groups = groupsOf(rows);
    std::string text = pageHead + contents(groups) + "<main>\n";
    for (const Group& group : groups) {
        text +=
            "<section class=\"group\" id=\"" + group.id + "\">\n<h2>" + xml::escaped(group.path) + "</h2>\n";
        for (const Documented* row : group.rows)
            text += article(*row, linker);
        text += "</section>\n";
    }
    return text + codesTable(rows) + "</main>\n" + pageTail;
}

} // namespace appletctl

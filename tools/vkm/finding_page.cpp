#include "finding_page.h"

#include "client/atomic_output.h"

namespace vemrado::tools {
namespace {

constexpr const char* top =
    "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>Findings</title><style>\n"
    "body{font:15px sans-serif;margin:2em}table{border-collapse:collapse}td,th{text-align:left;padding:.3em "
    ".8em;"
    "border-bottom:1px solid #ddd}.error{color:#c81e1e}.warning{color:#b06a00}.note{color:#286ec8}\n"
    "</style></head><body><h1>Findings</h1><table>\n"
    "<tr><th>Place</th><th>Severity</th><th>Rule</th><th>What is wrong</th></tr>\n";

std::string Escaped(std::string_view text) {
    std::string html;
    for (const char c : text) {
        if (c == '<') {
            html += "&lt;";
        } else if (c == '>') {
            html += "&gt;";
        } else if (c == '&') {
            html += "&amp;";
        } else {
            html += static_cast<unsigned char>(c) < ' ' ? '?' : c;
        }
    }
    return html;
}

}  // namespace

void FindingPage::Add(const std::string& file, const map::Finding& finding, const std::string& message) {
    const map::RuleText& rule = map::TextOf(finding.rule);
    const std::string severity(map::severityNames[static_cast<size_t>(rule.severity)]);
    rows += "<tr class=\"" + severity + "\"><td>" + Escaped(file) + ":" + std::to_string(finding.place.line) +
            ":" + std::to_string(finding.place.column) + "</td><td>" + severity + "</td><td>" +
            std::string(rule.name) + "</td><td>" + Escaped(message) + "</td></tr>\n";
}

void FindingPage::Write(const std::string& output) const {
    client::AtomicOutput page(output);
    page.Write(top);
    page.Write(rows);
    page.Write("</table></body></html>\n");
    page.Commit();
}

}  // namespace vemrado::tools

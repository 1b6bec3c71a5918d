// The manual page, in the man macros of troff.
#include <algorithm>

#include "base/ascii.h"
#include "base/product.h"
#include "cli/declarations.h"

namespace quenlar {
namespace {

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return IsLetter(c) ? static_cast<char>(c & ~0x20) : c; });
  return text;
}

// A text line: nothing in it is taken for a request or an escape.
std::string Escape(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
    }
  }
  if (!escaped.empty() && (escaped[0] == '.' || escaped[0] == '\'')) escaped = "\\&" + escaped;
  return escaped;
}

// "-o, --output FILE" in bold and italics.
std::string OptionHead(const DeclaredOption& option) {
  std::string head;
  for (const std::string& name : option.names) {
    head += (head.empty() ? "" : ", ") + std::string("\\fB") + Escape(name) + "\\fR";
  }
  if (!option.type.empty() && !option.positional()) head += " \\fI" + Escape(option.type) + "\\fR";
  return head + "\n";
}

void AddOptions(const DeclaredCommand& command, bool in_program, std::string& page) {
  for (const DeclaredOption& option : command.options) {
    // Help and version work everywhere and are told once, with the program.
    const bool everywhere = option.names.back() == "--help" || option.names.back() == "--version";
    if (everywhere && !in_program) continue;
    page += ".TP\n" + OptionHead(option) + Escape(option.help) + ".\n";
  }
}

// The explanation as a paragraph, the examples as they stand.
void AddFooter(const std::string& footer, std::string& page) {
  bool examples = false;
  for (const std::string_view line : Split(footer, "\n")) {
    if (line == "Examples:") {
      examples = true;
      page += ".PP\nExamples:\n.PP\n.nf\n.RS\n";
    } else if (line.empty()) {
      if (!examples) page += ".PP\n";
    } else {
      page += Escape(examples ? TrimBlanks(line) : line) + "\n";
    }
  }
  if (examples) page += ".RE\n.fi\n";
  // A paragraph mark right before the next one is one too many.
  for (std::size_t at; (at = page.find(".PP\n.PP\n")) != std::string::npos;) page.erase(at, 4);
}

std::string Synopsis(const DeclaredCommand& command) {
  std::string synopsis = "\\fBquenlar " + Escape(command.name) + "\\fR";
  for (const DeclaredOption& option : command.options) {
    if (!option.positional()) continue;
    const std::string name = "\\fI" + option.names.front() + "\\fR" + (option.repeated ? " ..." : "");
    synopsis += option.required ? " " + name : " [" + name + "]";
  }
  for (const DeclaredOption& option : command.options) {
    if (option.positional() || !option.required) continue;
    synopsis += " \\fB" + Escape(option.names.back()) + "\\fR";
    if (!option.type.empty()) synopsis += " \\fI" + Escape(option.type) + "\\fR";
  }
  const auto is_extra = [](const DeclaredOption& option) {
    return !option.positional() && !option.required && option.names.back() != "--help" &&
           option.names.back() != "--version";
  };
  if (std::any_of(command.options.begin(), command.options.end(), is_extra)) synopsis += " [options]";
  return synopsis + "\n";
}

}  // namespace

std::string ManPage(const std::vector<DeclaredCommand>& commands) {
  const DeclaredCommand& program = commands.front();
  std::string page =
      std::string(".TH QUENLAR 1 \"\" \"Quenlar ") + kProductVersion +
      "\" \"User Commands\"\n"
      ".SH NAME\nquenlar \\- collects e\\-mail addresses from the web\n"
      ".SH SYNOPSIS\n.B quenlar\n[\\fB\\-\\-home\\fR \\fIDIR\\fR] \\fICOMMAND\\fR [options] [arguments]\n"
      ".SH DESCRIPTION\n" +
      Escape(program.help) + "\n.PP\n";
  AddFooter(program.footer, page);
  page += ".SH OPTIONS\n";
  AddOptions(program, /*in_program=*/true, page);
  page += ".SH COMMANDS\n";
  for (std::size_t i = 1; i < commands.size(); ++i) {
    page +=
        ".SS " + Upper(commands[i].name) + "\n" + Synopsis(commands[i]) + ".PP\n" + Escape(commands[i].help) + ".\n";
    AddOptions(commands[i], /*in_program=*/false, page);
    page += ".PP\n";
    AddFooter(commands[i].footer, page);
  }
  page +=
      ".SH ENVIRONMENT\n"
      ".TP\n\\fBQUENLAR_HOME\\fR\nThe program folder where \\fB\\-\\-home\\fR is not given.\n"
      ".TP\n\\fBXDG_DATA_HOME\\fR, \\fBXDG_CONFIG_HOME\\fR\nWhere the program folder and the settings lie otherwise.\n"
      ".TP\n\\fBhttp_proxy\\fR, \\fBhttps_proxy\\fR, \\fBall_proxy\\fR, \\fBno_proxy\\fR\nThe proxy of every download, "
      "and the hosts that need none, where \\fB\\-\\-proxy\\fR is not given.\n"
      ".TP\n\\fBSSL_CERT_FILE\\fR\nA file of the certificates that \\fBcollect\\fR trusts instead of the system's "
      "own.\n";
  return page;
}

}  // namespace quenlar

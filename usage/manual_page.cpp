// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <sstream>

#include "usage/writers.h"

namespace pciinfo {
namespace {

using Lines = std::vector<std::string>;

std::string Escaped(const std::string& text) {
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
  return escaped;
}

/// Returns words as lines of text; escapes words that would begin a roff request.
std::string TextLine(const std::string& text) {
  constexpr std::size_t kWidth = 78;
  std::istringstream words(text);
  std::string lines;
  std::string line;
  for (std::string word; words >> word;) {
    word = Escaped(word);
    if (!line.empty() && line.size() + word.size() >= kWidth) {
      lines += line + "\n";
      line.clear();
    }
    const bool looksLikeRequest = line.empty() && (word[0] == '.' || word[0] == '\'');
    line += (line.empty() ? "" : " ") + std::string(looksLikeRequest ? "\\&" : "") + word;
  }
  return lines + line + "\n";
}

std::string Bold(const std::string& text) { return "\\fB" + Escaped(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + Escaped(text) + "\\fR"; }

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

Lines LinesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// Splits a text into groups of lines, which empty lines separate.
std::vector<Lines> Paragraphs(const std::string& text) {
  std::vector<Lines> paragraphs(1);
  for (std::string& line : LinesOf(text)) {
    if (!line.empty()) {
      paragraphs.back().push_back(std::move(line));
    } else if (!paragraphs.back().empty()) {
      paragraphs.emplace_back();
    }
  }
  if (paragraphs.back().empty()) paragraphs.pop_back();
  return paragraphs;
}

bool IsIndented(const std::string& line) { return line[0] == ' '; }

/// Returns "  KEY   text" as a tagged paragraph, other indented lines unchanged.
std::string IndentedLine(const std::string& line) {
  const std::string text = line.substr(line.find_first_not_of(' '));
  const std::size_t gap = text.find("  ");
  if (gap == std::string::npos) return ".br\n" + TextLine(text);
  return ".TP\n" + Bold(text.substr(0, gap)) + "\n" +
         TextLine(text.substr(text.find_first_not_of(' ', gap)));
}

std::string Paragraph(const Lines& lines) {
  std::string text = ".PP\n";
  for (const std::string& line : lines)
    text += IsIndented(line) ? IndentedLine(line) : TextLine(line);
  return text;
}

/// Whether the lines are a "Title:" above indented lines.
bool IsTitled(const Lines& lines) {
  return lines.size() > 1 && lines[0].back() == ':' && IsIndented(lines[1]);
}

/// Formats the footer of --help: a paragraph with a title becomes a section.
std::string FooterSections(const std::string& footer) {
  std::string plain;
  std::string titled;
  for (Lines& lines : Paragraphs(footer)) {
    if (!IsTitled(lines)) {
      plain += Paragraph(lines);
      continue;
    }
    titled += ".SH \"" + Upper(lines[0].substr(0, lines[0].size() - 1)) + "\"\n";
    for (std::size_t i = 1; i < lines.size(); ++i) titled += IndentedLine(lines[i]);
  }
  return plain + titled;
}

std::string OptionText(const UsageOption& option) {
  Lines names;
  for (const std::string& name : option.names) names.push_back(Bold(name));
  std::string text = fmt::format(".TP\n{}", fmt::join(names, ", "));
  if (!option.valueName.empty()) text += " " + Italic(option.valueName);
  text += "\n" + TextLine(option.description);
  const bool showsChoices = option.valueName.find('|') != std::string::npos;
  if (!option.choices.empty() && !showsChoices) {
    text += fmt::format(".br\nOne of {}.\n",
                        Escaped(fmt::format("{}", fmt::join(option.choices, ", "))));
  }
  if (!option.defaultText.empty()) {
    text += fmt::format(".br\nDefault: {}\n", Escaped(option.defaultText));
  }
  return text;
}

std::string ArgumentText(const UsageOption& argument) {
  return ".TP\n" + Italic(argument.names.front()) + "\n" + TextLine(argument.description);
}

std::string SynopsisText(const UsageCommand& command) {
  std::string text = command.options.empty() ? "" : " [" + Italic("OPTION") + "]...";
  for (const UsageOption& argument : command.arguments) {
    const std::string name = Italic(argument.names.front()) + (argument.isRepeatable ? "..." : "");
    text += argument.isRequired ? " " + name : " [" + name + "]";
  }
  return text;
}

/// Returns the paragraphs of a command's footer, except those that all commands have.
std::string OwnFooter(const UsageCommand& command, const std::vector<Lines>& common) {
  std::string text;
  for (const Lines& lines : Paragraphs(command.footer)) {
    if (std::find(common.begin(), common.end(), lines) == common.end()) text += Paragraph(lines);
  }
  return text;
}

std::vector<Lines> CommonParagraphs(const std::vector<UsageCommand>& commands) {
  if (commands.empty()) return {};
  std::vector<Lines> common = Paragraphs(commands.front().footer);
  for (const UsageCommand& command : commands) {
    const std::vector<Lines> own = Paragraphs(command.footer);
    std::erase_if(common, [&own](const Lines& lines) {
      return std::find(own.begin(), own.end(), lines) == own.end();
    });
  }
  return common;
}

std::string CommandText(const UsageCommand& command, const std::vector<Lines>& common) {
  std::string text = ".SS \"" + Escaped(command.name) + "\"\n" + Bold(command.name) +
                     SynopsisText(command) + "\n.PP\n";
  for (const std::string& line : LinesOf(command.description)) text += TextLine(line);
  for (const UsageOption& argument : command.arguments) text += ArgumentText(argument);
  for (const UsageOption& option : command.options) text += OptionText(option);
  return text + OwnFooter(command, common);
}

std::string CommandsSection(const std::vector<UsageCommand>& commands) {
  const std::vector<Lines> common = CommonParagraphs(commands);
  std::string text = ".SH COMMANDS\n";
  for (const Lines& lines : common) text += TextLine(fmt::format("{}", fmt::join(lines, " ")));
  for (const UsageCommand& command : commands) text += CommandText(command, common);
  return text;
}

/// Returns the first sentence, in the form for the NAME section of the page.
std::string Purpose(const std::string& description) {
  std::string purpose = description.substr(0, description.find_first_of(".\n"));
  if (!purpose.empty()) {
    purpose[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(purpose[0])));
  }
  return purpose;
}

}  // namespace

std::string ManualPage(const Usage& usage, const ManualText& manual) {
  const UsageCommand& program = usage.program;
  std::string text = fmt::format(".TH {} 1 {} \"{} {}\" \"User Commands\"\n", Upper(program.name),
                                 manual.date, program.name, manual.version);
  text += ".SH NAME\n" + program.name + " \\- " + Escaped(Purpose(program.description)) + "\n";
  text += ".SH SYNOPSIS\n" + Bold(program.name) + SynopsisText(program) + " [" + Italic("COMMAND") +
          " [" + Italic("ARGUMENT") + "]...]\n";
  text += ".SH DESCRIPTION\n";
  for (const std::string& line : LinesOf(program.description)) text += TextLine(line);
  text += CommandsSection(usage.commands);
  text += ".SH OPTIONS\n";
  for (const UsageOption& option : program.options) text += OptionText(option);
  return text + FooterSections(program.footer) + manual.sections;
}

}  // namespace pciinfo

#include "help_files.h"

#include <fmt/format.h>

namespace velmora::cli {
namespace {

// The option names of a command ("-o --output ..."), without help and the hidden ones.
std::string OptionWords(const CLI::App& app) {
  std::string words;
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group().empty() || !option->nonpositional()) continue;
    if (option == app.get_help_ptr() && app.get_parent() != nullptr) continue;  // the top level offers it
    for (const std::string& name : option->get_snames()) words += " -" + name;
    for (const std::string& name : option->get_lnames()) words += " --" + name;
  }
  return words;
}

std::string SubcommandWords(const CLI::App& app) {
  std::string words;
  for (const CLI::App* sub : app.get_subcommands({})) words += " " + sub->get_name();
  return words;
}

// Text for roff: backslashes and leading dots or quotes made harmless, hyphens made minus signs.
std::string Roff(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\\') out += "\\e";
    else if (c == '-') out += "\\-";
    else out += c;
  }
  if (!out.empty() && (out[0] == '.' || out[0] == '\'')) out.insert(0, "\\&");
  return out;
}

void ManOptions(const CLI::App& app, std::string& page) {
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group().empty()) continue;
    std::string names = option->get_name(false, true);
    if (!option->nonpositional()) names = option->get_name();
    page += ".TP\n\\fB" + Roff(names) + "\\fR";
    if (!option->get_type_name().empty() && option->nonpositional())
      page += " \\fI" + Roff(option->get_type_name()) + "\\fR";
    page += "\n" + Roff(option->get_description()) + "\n";
  }
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
  std::string cases;
  for (const CLI::App* command : app.get_subcommands({})) {
    std::string words = OptionWords(*command) + SubcommandWords(*command);
    for (const CLI::App* sub : command->get_subcommands({})) words += OptionWords(*sub);
    cases += fmt::format("    {}) opts=\"$opts{}\" ;;\n", command->get_name(), words);
  }
  return fmt::format(R"(# bash completion for velmora; generated from its command registry.
_velmora() {{
  local cur=${{COMP_WORDS[COMP_CWORD]}} prev=${{COMP_WORDS[COMP_CWORD-1]}}
  local commands="{}"
  local opts="{}"
  local command="" word
  for word in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
    case " $commands " in *" $word "*) command=$word; break ;; esac
  done
  case "$prev" in
    -o|--output|--settings) COMPREPLY=($(compgen -d -- "$cur")); return ;;
    --lang) COMPREPLY=($(compgen -W "ja en" -- "$cur")); return ;;
  esac
  case "$command" in
{}  esac
  if [[ -z $command && $cur != -* ]]; then
    COMPREPLY=($(compgen -W "$commands" -- "$cur"))
  elif [[ $cur == -* ]]; then
    COMPREPLY=($(compgen -W "$opts" -- "$cur"))
  else
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen -f -- "$cur"))
  fi
}}
complete -F _velmora velmora
)",
                     SubcommandWords(app).substr(1), OptionWords(app).substr(1), cases);
}

std::string ManPage(const CLI::App& app) {
  std::string summary = app.get_description();
  if (summary.rfind("velmora: ", 0) == 0) summary.erase(0, 9);
  std::string page = ".TH VELMORA 1 \"\" \"velmora\" \"User Commands\"\n.SH NAME\nvelmora \\- " + Roff(summary) + "\n.SH SYNOPSIS\n.B velmora\n[\\fIOPTIONS\\fR] \\fICOMMAND\\fR "
                     "[\\fICOMMAND OPTIONS\\fR] \\fIFILE\\fR...\n.SH OPTIONS\n";
  ManOptions(app, page);
  page += ".SH COMMANDS\n";
  for (const CLI::App* command : app.get_subcommands({})) {
    page += ".SS " + command->get_name() + "\n" + Roff(command->get_description()) + "\n";
    ManOptions(*command, page);
    for (const CLI::App* sub : command->get_subcommands({})) {
      page += ".SS " + command->get_name() + " " + sub->get_name() + "\n" + Roff(sub->get_description()) + "\n";
      ManOptions(*sub, page);
    }
  }
  page += ".SH EXIT STATUS\n" + Roff(app.get_footer()) + "\n";
  return page;
}

}  // namespace velmora::cli

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Completion.h"

#include "tools/OptionTable.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace lumetwin::batch {
namespace {

struct Switch {
    std::string_view name, help;
};

constexpr Switch generalSwitches[] = {{"--help", "show the options"}, {"--version", "show the version"}};
constexpr Switch inspectSwitches[] = {{"--json", "for programs"},
                                      {"--in-process", "work on files in this process, not in a confined one"}};
constexpr std::string_view inspectHelp = "tell whether files are spatial media, and their stereo values";

bool takesFolder(const Option &option) {
    return option.argument == "FOLDER";
}

bool takesFile(const Option &option) {
    return option.argument == "FILE";
}

std::string joinedWords(const Option &option) {
    return fmt::format("{}", fmt::join(option.words, " "));
}

/// A text between single quotes, for all three shells.
std::string inQuotes(std::string_view text) {
    std::string result = "'";
    for (const char character : text)
        result += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return result + "'";
}

template <std::size_t count> std::string namesOf(const Switch (&switches)[count]) {
    std::string names;
    for (const Switch &entry : switches)
        names += (names.empty() ? "" : " ") + std::string(entry.name);
    return names;
}

std::string bashScript() {
    std::string values, options = namesOf(generalSwitches);
    for (const Option &option : optionTable()) {
        options += " " + std::string(option.name);
        if (option.argument.empty())
            continue;
        values += fmt::format("    {})\n", option.name);
        if (takesFolder(option) || takesFile(option))
            values += fmt::format("        compopt -o filenames\n"
                                  "        mapfile -t COMPREPLY < <(compgen -{} -- \"$word\")\n",
                                  takesFolder(option) ? 'd' : 'f');
        else
            values +=
                fmt::format("        mapfile -t COMPREPLY < <(compgen -W '{}' -- \"$word\")\n", joinedWords(option));
        values += "        return ;;\n";
    }
    return "# Completes lumetwin-batch in bash.\n"
           "_lumetwin_batch() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} options\n"
           "    COMPREPLY=()\n"
           "    # bash takes the = of --option=value for a word of its own\n"
           "    if [[ $word == = ]]; then word=\n"
           "    elif [[ $option == = ]]; then option=${COMP_WORDS[COMP_CWORD - 2]}; fi\n"
           "    case $option in\n" +
           values +
           "    esac\n"
           "    options='" +
           options + "'\n    [[ ${COMP_WORDS[1]} == inspect ]] && options='" + namesOf(inspectSwitches) +
           "'\n"
           "    if [[ $word == -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$word\")\n"
           "        return\n"
           "    fi\n"
           "    compopt -o filenames\n"
           "    mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
           "    if ((COMP_CWORD == 1)) && [[ inspect == \"$word\"* ]]; then COMPREPLY+=(inspect); fi\n"
           "}\n"
           "complete -F _lumetwin_batch lumetwin-batch\n";
}

/// A help text for zsh, in which brackets and colons have a meaning.
std::string zshHelp(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character == '[' || character == ']' || character == ':' || character == '\\')
            result += '\\';
        result += character;
    }
    return result;
}

std::string zshLine(std::string_view specification) {
    return "    " + inQuotes(specification) + " \\\n";
}

std::string zshScript() {
    std::string options, inspection;
    for (const Option &option : optionTable()) {
        const std::string action = takesFolder(option) ? "_files -/"
                                   : takesFile(option) ? "_files"
                                                       : "(" + joinedWords(option) + ")";
        const std::string help = zshHelp(description(option));
        options +=
            zshLine(option.argument.empty() ? fmt::format("{}[{}]", option.name, help)
                                            : fmt::format("{}=[{}]:{}:{}", option.name, help, option.argument, action));
    }
    for (const Switch &entry : generalSwitches)
        options += zshLine(fmt::format("{}[{}]", entry.name, entry.help));
    for (const Switch &entry : inspectSwitches)
        inspection += zshLine(fmt::format("{}[{}]", entry.name, entry.help));
    return "#compdef lumetwin-batch\n"
           "# Completes lumetwin-batch in zsh.\n"
           "if (( CURRENT > 2 )) && [[ ${words[2]} == inspect ]]; then\n"
           "  _arguments \\\n" +
           inspection +
           "    '*:file:_files'\n"
           "  return\n"
           "fi\n"
           "_arguments -S \\\n" +
           options + zshLine("1: : _alternative \"commands:command:(inspect)\" \"files:input:_files\"") +
           "    '*:input:_files'\n";
}

std::string fishScript() {
    constexpr std::string_view begin = "complete -c lumetwin-batch";
    constexpr std::string_view inspecting = " -n 'string match -q inspect -- (commandline -opc)[2]'";
    constexpr std::string_view converting = " -n 'not string match -q inspect -- (commandline -opc)[2]'";
    std::string script = "# Completes lumetwin-batch in fish.\n";
    const auto name = [](std::string_view option) { return option.substr(2); };
    for (const Option &option : optionTable()) {
        script += fmt::format("{}{} -l {}", begin, converting, name(option.name));
        if (takesFolder(option))
            script += " -x -a '(__fish_complete_directories)'";
        else if (takesFile(option))
            script += " -r";
        else if (!option.argument.empty())
            script += " -x -a " + inQuotes(joinedWords(option));
        script += " -d " + inQuotes(description(option)) + "\n";
    }
    for (const Switch &entry : generalSwitches)
        script += fmt::format("{}{} -l {} -d {}\n", begin, converting, name(entry.name), inQuotes(entry.help));
    for (const Switch &entry : inspectSwitches)
        script += fmt::format("{}{} -l {} -d {}\n", begin, inspecting, name(entry.name), inQuotes(entry.help));
    return script + fmt::format("{} -n 'test (count (commandline -opc)) -eq 1' -a inspect -d {}\n", begin,
                                inQuotes(inspectHelp));
}

} // namespace

std::string completionScript(std::string_view shell) {
    return shell == "bash" ? bashScript() : shell == "zsh" ? zshScript() : fishScript();
}

} // namespace lumetwin::batch

#include <sstream>

#include "command/pages/Pages.h"

namespace Tesseret::Command {

namespace {

/// Text in which roff sees no command: no backslash, no hyphen that it would turn into a dash, and
/// no line that starts with a full stop or an apostrophe.
std::string plain(const std::string& text)
{
    std::string result;
    bool isLineStart = true;
    for (const char c : text) {
        if (isLineStart && (c == '.' || c == '\'')) result += "\\&";
        isLineStart = c == '\n';
        if (c == '\\') {
            result += "\\e";
        } else if (c == '-') {
            result += "\\-";
        } else {
            result += c;
        }
    }
    return result;
}

std::string synopsis(const OptionModel& option)
{
    if (option.isPositional) {
        const std::string value = "\\fI" + plain(option.value) + "\\fR";
        return (option.isRequired ? value : "[" + value + "]") + (option.isRepeated ? " ..." : "");
    }
    std::string text = "\\fB" + plain(option.names.back()) + "\\fR";
    if (!option.value.empty()) text += " \\fI" + plain(option.value) + "\\fR";
    return text;
}

void writeOption(std::ostringstream& page, const OptionModel& option)
{
    page << ".TP\n";
    if (option.isPositional) {
        page << synopsis(option);
    } else {
        for (std::size_t i = 0; i < option.names.size(); ++i)
            page << (i == 0 ? "" : ", ") << "\\fB" << plain(option.names[i]) << "\\fR";
        if (!option.value.empty()) page << " \\fI" << plain(option.value) << "\\fR";
    }
    page << "\n" << plain(option.description) << "\n";
}

/// The text and the examples, which are kept line by line.
void writeFooter(std::ostringstream& page, const std::string& footer)
{
    if (footer.empty()) return;
    page << ".PP\n.nf\n" << plain(footer) << "\n.fi\n";
}

void writeCommand(std::ostringstream& page, const NamedCommand& named)
{
    const CommandModel& command = *named.command;
    page << ".SS tesseret " << plain(named.name) << "\n" << plain(command.description) << ".\n";
    for (const OptionModel& option : command.options) writeOption(page, option);
    writeFooter(page, command.footer);
}

void writeSynopsis(std::ostringstream& page, const CommandModel& program)
{
    page << ".SH SYNOPSIS\n";
    for (const NamedCommand& named : allCommands(program)) {
        const CommandModel& command = *named.command;
        if (!command.commands.empty()) continue;
        page << ".B tesseret " << plain(named.name) << "\n";
        for (const OptionModel& option : command.options) {
            if (option.isRequired && !option.isPositional) page << synopsis(option) << "\n";
        }
        page << "[\\fIoptions\\fR]\n";
        for (const OptionModel& option : command.options) {
            if (option.isPositional) page << synopsis(option) << "\n";
        }
        page << ".br\n";
    }
    page << ".B tesseret \\-\\-version | \\-\\-help\n";
}

constexpr const char* kEnd = R"(.SH EXIT STATUS
.TP
.B 0
All files are written; the inspected bundle is well; all frames of a job are done.
.TP
.B 1
A render failed, or a result could not be written; anything is wrong with the inspected bundle;
chunks of a job have failed.
.TP
.B 2
The request cannot be carried out. One line on standard error gives the reason.
.TP
.B 3
Frames of a job wait or are being rendered.
.TP
.B 130
Interrupted.
.SH ENVIRONMENT
.TP
.B OFX_PLUGIN_PATH
Folders with OFX bundles, separated by colons.
.TP
.B TESSERET_KERNELS
The set of inner loops that the plug-in uses: plain, sse4.1 or avx2. To look for faults.
.SH FILES
.TP
.I /usr/OFX/Plugins/Tesseret.ofx.bundle
The plug-in, for every OFX host.
)";

}  // namespace

std::string manualPage(const CommandModel& program, const std::string& version)
{
    std::ostringstream page;
    page << ".TH TESSERET 1 \"\" \"tesseret " << plain(version) << "\" \"User Commands\"\n"
         << ".SH NAME\ntesseret \\- fill pictures with quilted texture\n";
    writeSynopsis(page, program);
    page << ".SH DESCRIPTION\n" << plain(program.description) << ".\n";
    page << ".SH COMMANDS\n";
    for (const NamedCommand& named : allCommands(program)) writeCommand(page, named);
    page << kEnd;
    return page.str();
}

}  // namespace Tesseret::Command

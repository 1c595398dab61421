// SPDX-License-Identifier: Apache-2.0
#include "cli/clHelpLayout.h"

#include <algorithm>

namespace
{

// Takes the first line, without its end, off the text.
std::string_view takeLine(std::string_view& text)
{
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

// indent: of the second line and those behind it.
void appendFitted(std::string& result, std::string_view line, std::size_t indent)
{
    // Where the line may be broken first.
    std::size_t begin = indent;
    std::size_t room = clColumnsOfHelp;
    while (line.size() > room)
    {
        std::size_t end = line.rfind(' ', room);
        if (end == std::string_view::npos || end < begin)
        {
            end = line.find(' ', room);
        }
        if (end == std::string_view::npos)
        {
            break;
        }
        result.append(line.substr(0, end)).append("\n").append(indent, ' ');
        line.remove_prefix(end + 1);
        begin = 0;
        room = clColumnsOfHelp - indent;
    }
    result.append(line).append("\n");
}

}  // namespace

std::string clFitLines(std::string_view text)
{
    std::string result;
    while (!text.empty())
    {
        const std::string_view line = takeLine(text);
        const std::size_t column = line.substr(0, 1) == " " ? line.rfind("  ") : std::string_view::npos;
        appendFitted(result, line, column == std::string_view::npos ? 0 : column + 2);
    }
    return result;
}

std::string clFillParagraphs(std::string_view text)
{
    std::string result;
    std::string paragraph;
    const auto endParagraph = [&result, &paragraph]
    {
        if (!paragraph.empty())
        {
            appendFitted(result, paragraph, 0);
            paragraph.clear();
        }
    };
    while (!text.empty())
    {
        const std::string_view line = takeLine(text);
        if (!line.empty() && line.front() != ' ')
        {
            paragraph.append(paragraph.empty() ? "" : " ").append(line);
            continue;
        }
        endParagraph();
        result.append(line).append("\n");
    }
    endParagraph();
    return result;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/TextTable.h"

#include <optional>
#include <set>
#include <utility>

namespace lumetwin {
namespace {

class Parser {
public:
    std::vector<TextEntry> parse(std::string_view po) {
        while (!po.empty()) {
            const std::size_t end = po.find('\n');
            std::string_view line = po.substr(0, end);
            po.remove_prefix(end == std::string_view::npos ? po.size() : end + 1);
            if (line.ends_with('\r'))
                line.remove_suffix(1);
            ++lineNumber_;
            takeLine(line);
        }
        finishEntry();
        return std::move(entries_);
    }

private:
    struct Draft {
        std::optional<std::string> key, english, translation;
        bool isFormat = false;
        bool isFuzzy = false;
    };

    [[noreturn]] void fail(const std::string &why) const {
        throw TextTableError("line " + std::to_string(lineNumber_) + ": " + why);
    }

    void takeLine(std::string_view line) {
        if (line.empty())
            return finishEntry();
        if (line.front() == '#')
            return takeComment(line);
        if (line.front() == '"') {
            if (!current_)
                fail("a string that belongs to nothing");
            *current_ += unquoted(line);
            return;
        }
        const std::size_t blank = line.find(' ');
        if (blank == std::string_view::npos)
            fail("neither a comment, a keyword nor a string");
        takeKeyword(line.substr(0, blank), line.substr(blank + 1));
    }

    void takeComment(std::string_view line) {
        if (draft_.translation)
            finishEntry();
        current_ = nullptr;
        if (!line.starts_with("#,"))
            return;
        draft_.isFormat |= line.find(" c-format") != std::string_view::npos;
        draft_.isFuzzy |= line.find(" fuzzy") != std::string_view::npos;
    }

    void takeKeyword(std::string_view keyword, std::string_view string) {
        if (draft_.translation)
            finishEntry();
        if (keyword == "msgctxt" && !draft_.english)
            begin(draft_.key, string);
        else if (keyword == "msgid")
            begin(draft_.english, string);
        else if (keyword == "msgstr" && draft_.english)
            begin(draft_.translation, string);
        else
            fail("unexpected " + std::string(keyword));
    }

    void begin(std::optional<std::string> &field, std::string_view string) {
        if (field)
            fail("given twice");
        current_ = &field.emplace(unquoted(string));
    }

    std::string unquoted(std::string_view string) const {
        if (string.size() < 2 || string.front() != '"' || string.back() != '"')
            fail("a string without its quotation marks");
        string = string.substr(1, string.size() - 2);
        std::string result;
        for (std::size_t at = 0; at < string.size(); ++at) {
            if (string[at] == '"')
                fail("a quotation mark within a string");
            result += string[at] == '\\' ? escaped(string, ++at) : string[at];
        }
        return result;
    }

    char escaped(std::string_view string, std::size_t at) const {
        switch (at < string.size() ? string[at] : '\0') {
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case '"':
        case '\\':
            return string[at];
        default:
            fail("an unknown escape in a string");
        }
    }

    void finishEntry() {
        const Draft draft = std::exchange(draft_, {});
        current_ = nullptr;
        if (!draft.key && !draft.english)
            return;
        if (!draft.english || !draft.translation)
            fail("an entry that is not complete");
        if (!draft.key) {
            if (!draft.english->empty() || !entries_.empty())
                fail("an entry without its key (msgctxt)");
            return; // the header
        }
        if (!keys_.insert(*draft.key).second)
            fail("a second entry for " + *draft.key);
        entries_.push_back(
            {*draft.key, *draft.english, draft.isFuzzy ? std::string() : *draft.translation, draft.isFormat});
    }

    std::vector<TextEntry> entries_;
    std::set<std::string> keys_;
    Draft draft_;
    std::string *current_ = nullptr;
    int lineNumber_ = 0;
};

} // namespace

std::vector<TextEntry> parseTextTable(std::string_view po) {
    return Parser().parse(po);
}

} // namespace lumetwin

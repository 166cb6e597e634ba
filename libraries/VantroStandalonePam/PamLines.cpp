#include "VantroStandalonePam/PamLines.h"

#include <algorithm>

namespace vantro {
namespace {

/// libpam's buffer for a logical line, without the zero at its end.
constexpr std::size_t lineLimit = 1023;
constexpr std::string_view blanks = " \t\n";

/// Puts logical lines together from what libpam takes out of the file at a time.
class LineReader
{
  public:
    explicit LineReader(std::string_view text) : text_(text) {}

    PamLines read()
    {
        while (position_ < text_.size() && result_.reading == PamReading::Whole)
            add(nextChunk());
        if (isContinued_ && result_.reading == PamReading::Whole) {
            result_.reading = PamReading::GivesUp;
            note(PamFailure::StrayContinuation);
        }
        return std::move(result_);
    }

  private:
    /// What fgets(3) answers: a physical line with its break, or as much of it as the buffer has room for. A line break
    /// that is then left alone says nothing to libpam, and belongs to the line.
    std::string_view nextChunk()
    {
        const std::size_t room = lineLimit - line_.text.size();
        const auto rest = text_.substr(position_);
        const auto lineBreak = rest.find('\n');
        const auto chunk = rest.substr(0, std::min(room, lineBreak == std::string_view::npos ? room : lineBreak + 1));
        begin_ = position_;
        position_ += chunk.size();
        if (lineBreak == chunk.size())
            ++position_;
        else if (position_ < text_.size() && !chunk.ends_with('\n'))
            note(PamFailure::LineTooLong);
        return chunk;
    }

    void add(std::string_view chunk)
    {
        // A zero byte ends the string in libpam's buffer.
        const auto visible = chunk.substr(0, chunk.find('\0'));
        const auto comment = std::min(visible.find('#'), visible.size());
        if (visible.size() < chunk.size() && comment == visible.size())
            note(PamFailure::ZeroByte);
        const auto content = visible.substr(0, comment);
        const auto last = content.find_last_not_of(blanks);
        if (last == std::string_view::npos)
            return;

        if (content.find('\r') != std::string_view::npos)
            note(PamFailure::CarriageReturn);
        if (!isContinued_)
            line_.begin = begin_;
        isContinued_ = content[last] == '\\' && comment == visible.size();
        if (isContinued_) {
            line_.text.append(content.substr(0, last)) += ' ';
            if (line_.text.size() == lineLimit) {
                // libpam asks for the next line again and again, with no room for a single byte.
                result_.reading = PamReading::Breaks;
                note(PamFailure::LineTooLong);
            }
            return;
        }
        line_.text += content;
        line_.end = position_;
        result_.lines.push_back(std::move(line_));
        line_ = {};
    }

    void note(PamFailure oddity)
    {
        if (!result_.oddity)
            result_.oddity = oddity;
    }

    const std::string_view text_;
    std::size_t position_ = 0;
    std::size_t begin_ = 0;
    PamLine line_;
    bool isContinued_ = false;
    PamLines result_;
};

/// Takes one word off the line.
std::string takeWord(std::string_view& line)
{
    std::string word;
    std::size_t end = 0;
    if (line.front() == '[') {
        for (end = 1; end < line.size() && line[end] != ']'; ++end) {
            if (line.substr(end, 2) == "\\]")
                ++end;
            word += line[end];
        }
    } else {
        end = std::min(line.find_first_of(blanks), line.size());
        word = line.substr(0, end);
    }
    line.remove_prefix(std::min(end + 1, line.size()));
    return word;
}

} // namespace

PamLines pamLinesOf(std::string_view text)
{
    return LineReader(text).read();
}

std::vector<std::string> pamWordsOf(std::string_view line, std::size_t limit)
{
    std::vector<std::string> words;
    while (words.size() < limit) {
        line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
        if (line.empty())
            break;
        words.push_back(takeWord(line));
    }
    return words;
}

} // namespace vantro

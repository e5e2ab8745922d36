#include "Kestrio/Platform/Linux/X11Text.h"

#include "Kestrio/Base/Text.h"

#include <array>
#include <iconv.h>
#include <optional>

namespace kestrio {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// A set of characters that an escape sequence puts into one half of the code table. Its bytes go through a codec that
/// has the set in the upper half; no codec stands for ASCII in the lower half, and for an unknown set in the upper.
struct CharacterSet {
    const char* codec = nullptr;
    std::size_t bytesPerCharacter = 1;
};

class CompoundText {
public:
    explicit CompoundText(std::string_view bytes) : rest_(bytes) {}

    std::string decoded() {
        while (!rest_.empty()) {
            if (rest_.front() == '\x1B')
                takeEscape();
            else if (rest_.front() == '\x9B')
                takeControl();
            else
                takeRun();
        }
        return text::fromUntrustedBytes(result_); // some sets have a place for U+0000
    }

private:
    static bool isUpper(char byte) { return static_cast<unsigned char>(byte) >= 0x80; }

    void takeEscape() {
        constexpr std::string_view beginUTF8 = "\x1B%G";
        constexpr std::string_view endUTF8 = "\x1B%@";
        if (rest_.starts_with(beginUTF8)) {
            const auto end = rest_.find(endUTF8);
            result_ += text::fromUntrustedBytes(rest_.substr(0, end).substr(beginUTF8.size()));
            rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + endUTF8.size());
            return;
        }
        // ESC, intermediates of 0x20 to 0x2F, a final byte.
        std::size_t end = 1;
        while (end < rest_.size() && rest_[end] >= 0x20 && rest_[end] <= 0x2F)
            ++end;
        const auto intermediates = rest_.substr(1, end - 1);
        if (end < rest_.size())
            designate(intermediates, rest_[end]);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
    }

    void designate(std::string_view intermediates, char set) {
        if (intermediates == "(")
            lower_ = {}; // ASCII, or a national variant of it
        else if (intermediates == ")")
            upper_ = set == 'I' ? CharacterSet{"SHIFT_JIS"} : CharacterSet{}; // half-width katakana
        else if (intermediates == "-")
            upper_ = {iso8859(set), 1};
        else if (intermediates == "$(")
            lower_ = {eastAsian(set), 2};
        else if (intermediates == "$)")
            upper_ = {eastAsian(set), 2};
    }

    static const char* iso8859(char set) {
        switch (set) {
        case 'A': return "ISO-8859-1";
        case 'B': return "ISO-8859-2";
        case 'C': return "ISO-8859-3";
        case 'D': return "ISO-8859-4";
        case 'F': return "ISO-8859-7";
        case 'G': return "ISO-8859-6";
        case 'H': return "ISO-8859-8";
        case 'L': return "ISO-8859-5";
        case 'M': return "ISO-8859-9";
        case 'V': return "ISO-8859-10";
        case 'Y': return "ISO-8859-13";
        case '_': return "ISO-8859-14";
        case 'b': return "ISO-8859-15";
        case 'f': return "ISO-8859-16";
        default: return nullptr;
        }
    }

    static const char* eastAsian(char set) {
        switch (set) {
        case 'A': return "EUC-CN";
        case 'B': return "EUC-JP";
        case 'C': return "EUC-KR";
        default: return nullptr;
        }
    }

    /// CSI 1 ], CSI 2 ] and CSI ] say in which direction the text runs; a reader does without.
    void takeControl() {
        const auto end = rest_.find(']');
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    }

    /// Bytes of one half of the code table, up to the next sequence.
    void takeRun() {
        const bool upper = isUpper(rest_.front());
        std::size_t end = 1;
        while (end < rest_.size() && rest_[end] != '\x1B' && rest_[end] != '\x9B' && isUpper(rest_[end]) == upper)
            ++end;
        const auto run = rest_.substr(0, end);
        rest_.remove_prefix(end);
        const auto& set = upper ? upper_ : lower_;
        if (set.codec)
            convert(run, set);
        else if (upper || set.bytesPerCharacter != 1)
            for (std::size_t i = 0; i < run.size(); i += set.bytesPerCharacter)
                result_ += replacement;
        else
            result_ += text::fromUntrustedBytes(run);
    }

    void convert(std::string_view run, const CharacterSet& set) {
        std::string bytes(run);
        for (auto& byte : bytes)
            if (static_cast<unsigned char>(byte) > 0x20)
                byte = static_cast<char>(static_cast<unsigned char>(byte) | 0x80);
        const auto codec = iconv_open("UTF-8", set.codec);
        if (codec == iconv_t(-1)) {
            result_ += replacement;
            return;
        }
        char* from = bytes.data();
        std::size_t left = bytes.size();
        std::array<char, 256> buffer{};
        while (left > 0) {
            char* to = buffer.data();
            std::size_t room = buffer.size();
            const auto before = left;
            iconv(codec, &from, &left, &to, &room);
            result_.append(buffer.data(), buffer.size() - room);
            if (left > 0 && left == before) { // not a character of the set
                result_ += replacement;
                ++from;
                --left;
            }
        }
        iconv_close(codec);
    }

    std::string_view rest_;
    CharacterSet lower_;
    CharacterSet upper_{"ISO-8859-1"};
    std::string result_;
};

} // namespace

std::string fromLatin1(std::string_view bytes) {
    std::string result;
    result.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (value == 0) {
            result += replacement;
        } else if (value < 0x80) {
            result += byte;
        } else {
            result += static_cast<char>(0xC0 | (value >> 6));
            result += static_cast<char>(0x80 | (value & 0x3F));
        }
    }
    return result;
}

std::string fromCompoundText(std::string_view bytes) {
    return CompoundText(bytes).decoded();
}

} // namespace kestrio

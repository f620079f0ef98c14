// SPDX-License-Identifier: GPL-3.0-or-later
// How the CIF highlighter reads one line: a style per character and a state for the next.
#include "editor/QcbsCifLineClassifier.hpp"

#include <QChar>
#include <algorithm>
#include <string>
#include <string_view>

#include "cif/CifCharacters.hpp"
#include "cif/CifDictionary.hpp"

namespace {

enum ProcessingState : unsigned char {
    Normal = 0,           // between tokens or inside a bare word
    InComment = 1,        // after a # that starts a comment
    QuoteOpened = 2,      // the opening quote
    InQuotedString = 3,   // inside a quoted string
    QuoteClosed = 4,      // the closing quote
    TextFieldOpened = 5,  // the ; that opens a text field
    InTextField = 6,      // inside a text field
    TextFieldClosed = 7,  // the ; that closes a text field
    InDataName = 8,       // inside a data name
    DataNameEnded = 9,    // the first separator after a data name
    NumberOfStates = 10
};

enum CharacterClass : unsigned char {
    WordChar = 0,
    CommentStart = 1,
    Separator = 2,
    NameStart = 3,
    Quote = 4,
    TextFieldMark = 5
};

constexpr unsigned char kTransition[NumberOfStates][6] = {
    {0, 1, 0, 8, 2, 5},  // Normal
    {1, 1, 1, 1, 1, 1},  // InComment
    {3, 3, 3, 3, 4, 3},  // QuoteOpened
    {3, 3, 3, 3, 4, 3},  // InQuotedString
    {0, 1, 0, 8, 2, 5},  // QuoteClosed
    {6, 6, 6, 6, 6, 7},  // TextFieldOpened
    {6, 6, 6, 6, 6, 7},  // InTextField
    {0, 1, 0, 8, 2, 5},  // TextFieldClosed
    {8, 8, 9, 8, 8, 8},  // InDataName
    {0, 1, 0, 8, 2, 5},  // DataNameEnded
};

// What the state machine needs to know of a character, as bits.
enum CharacterBits : unsigned char {
    Letter = 1,
    Digit = 2,
    WordPunctuation = 4,  // punctuation that belongs to bare words
    Space = 8,
    Rejected = 16,  // a character the CIF library rejects
    // Characters that need no look at their neighbours in the common states:
    // they cannot start a comment, data name or string, end a text field,
    // begin an escape code or markup, or be rejected.
    PlainWord = 32,       // ASCII letters, digits and word punctuation but ^ ~ and backslash
    PlainBlank = 64,      // space, tab, carriage return
    PlainSeparator = 128  // the equals sign
};
constexpr unsigned char kPlain = PlainWord | PlainBlank | PlainSeparator;

bool rejected(unsigned char byte) { return is_bad_nonprinting_char(byte) || is_bad_printing_char(byte); }

// The bits of the 256 Latin-1 characters, computed once; characters beyond
// Latin-1 are asked of QChar directly.
class CharacterTable {
public:
    CharacterTable() {
        for (int c = 0; c < 256; ++c) {
            unsigned char b = 0;
            if (QChar::isLetter(char32_t(c))) b |= Letter;
            if (c >= '0' && c <= '9') b |= Digit;
            if (QChar::isSpace(char32_t(c))) b |= Space;
            if (rejected(static_cast<unsigned char>(c))) b |= Rejected;
            bits_[c] = b;
        }
        for (const char c : std::string_view("!$%&()*+,-./:<>?@[]\\^`{}|~")) {
            bits_[static_cast<unsigned char>(c)] |= WordPunctuation;
        }
        for (int c = 0; c < 128; ++c) {
            if ((bits_[c] & (Letter | Digit | WordPunctuation)) && c != '^' && c != '~' && c != '\\') {
                bits_[c] |= PlainWord;
            }
        }
        bits_[static_cast<unsigned char>(' ')] |= PlainBlank;
        bits_[static_cast<unsigned char>('\t')] |= PlainBlank;
        bits_[static_cast<unsigned char>('\r')] |= PlainBlank;
        bits_[static_cast<unsigned char>('=')] |= PlainSeparator;
        std::copy(bits_, bits_ + 256, latin1_);
        std::fill(latin1_ + 256, latin1_ + 65536, 0);
    }
    // The bits of a Latin-1 character, or 0 for any other; one look-up, no
    // test, for the loops over plain characters.
    unsigned char latin1(char16_t c) const { return latin1_[c]; }
    unsigned char operator()(char16_t c) const {
        if (c < 256) return bits_[c];
        unsigned char b = bits_[0] & Rejected;  // the library sees such a character as byte 0
        if (QChar::isLetter(char32_t(c))) b |= Letter;
        if (QChar::isDigit(char32_t(c))) b |= Digit;
        if (QChar::isSpace(char32_t(c))) b |= Space;
        return b;
    }

private:
    unsigned char bits_[256];
    unsigned char latin1_[65536];
};

const CharacterTable& characterBits() {
    static const CharacterTable table;
    return table;
}

constexpr unsigned char kLetterOrDigit = Letter | Digit;

// The class of the character at i; the virtual blank at the line end is
// i == size.
CharacterClass classOf(const char16_t* text, int i, int size, unsigned char bits, unsigned char previousBits,
                       bool blankSoFar) {
    const CharacterTable& bitsOf = characterBits();
    const char16_t c = i < size ? text[i] : u' ';
    const bool afterBlank = blankSoFar || (previousBits & Space) != 0;
    switch (c) {
        case '#':
            return afterBlank ? CommentStart : WordChar;
        case '_':
            return afterBlank ? NameStart : WordChar;
        case ';':
            return blankSoFar ? TextFieldMark : Separator;
        case '\'':
        case '"': {
            // A quote inside a word, as in it's, is part of the word.
            const bool embeddedAfter = i > 0 && ((previousBits & kLetterOrDigit) != 0 || text[i - 1] == '(' ||
                                                 text[i - 1] == ')' || text[i - 1] == '\\');
            const bool embeddedBefore = i + 1 < size && ((bitsOf(text[i + 1]) & kLetterOrDigit) != 0 ||
                                                         text[i + 1] == '(' || text[i + 1] == ')');
            return embeddedAfter && embeddedBefore ? WordChar : Quote;
        }
        default:
            // Only ASCII digits are word characters; other digits separate.
            return (bits & (Letter | WordPunctuation)) || (c >= '0' && c <= '9') ? WordChar : Separator;
    }
}

bool isEscapedLetterCode(char16_t c) {
    switch (c) {
        case '%':
        case '?':
        case '&':
        case '/':
        case '\'':
        case '`':
        case '^':
        case ',':
        case '"':
        case '~':
        case ';':
        case '>':
        case '=':
        case '.':
        case '<':
        case '(':
            return true;
        default:
            return false;
    }
}

}  // namespace

void QcbsCifLineClassifier::setStyle(int start, int count, SyntaxStyle style) {
    const int size = static_cast<int>(styles_.size());
    const int begin = std::clamp(start, 0, size);
    const int end = std::clamp(start + count, begin, size);
    std::fill(styles_.begin() + begin, styles_.begin() + end, style);
}

int QcbsCifLineClassifier::classify(QStringView line, int incomingState) {
    const CharacterTable& bitsOf = characterBits();
    const int size = static_cast<int>(line.size());
    const char16_t* text = line.utf16();
    lineLength_ = size;
    // The paragraph is the line and, when the line end counts as a separator,
    // one blank after it.
    const int paragraphLength = size + (lineEnd_ == LineEnd::Separator ? 1 : 0);
    styles_.resize(paragraphLength, QcbsFontStyleSettings::Standard);

    int state = Normal;
    subscript_ = superscript_ = false;
    if (incomingState != -1 && incomingState != -2) {
        subscript_ = (incomingState & SubscriptFlag) != 0;
        superscript_ = (incomingState & SuperscriptFlag) != 0;
        state = incomingState & ~(SubscriptFlag | SuperscriptFlag);
        if (state < 0 || state >= NumberOfStates) state = Normal;  // not a state this class hands out
    }
    bool blankSoFar = true;
    bool hasMarkup = false;
    uniform_ = false;
    word_.clear();
    unsigned char previousBits = bitsOf(0);

    for (int i = 0; i < paragraphLength; ++i) {
        // Runs of plain characters in the common states are styled in one go.
        if (fastRuns_ && i < size && (bitsOf.latin1(text[i]) & kPlain) && (i < 1 || text[i - 1] != '\\') &&
            (i < 2 || text[i - 2] != '\\')) {
            int end = i;
            uniform_ = i == 0;  // a run over the whole line is one run, unless it restyles a word
            switch (state) {
                case Normal:
                    end = normalRun(text, i, size, blankSoFar);
                    break;
                case InComment:
                    end = plainRun(text, i, size, blankSoFar, QcbsFontStyleSettings::Comment);
                    break;
                case InQuotedString:
                    end = plainRun(text, i, size, blankSoFar, QcbsFontStyleSettings::Standard);
                    break;
                case InTextField:
                    end = plainRun(text, i, size, blankSoFar, QcbsFontStyleSettings::String);
                    break;
                default:
                    break;
            }
            if (end != paragraphLength) uniform_ = false;
            if (end > i) {
                previousBits = bitsOf(end <= size ? text[end - 1] : u' ');
                i = end - 1;
                continue;
            }
        }
        const char16_t c = i < size ? text[i] : u' ';
        const unsigned char bits = bitsOf(c);

        const CharacterClass cls = classOf(text, i, size, bits, previousBits, blankSoFar);
        if (cls == TextFieldMark) subscript_ = superscript_ = false;
        if (c == '^' || c == '~') hasMarkup = true;
        blankSoFar = blankSoFar && (bits & Space) != 0;
        if (cls == WordChar || cls == NameStart) word_.push_back(c);

        state = kTransition[state][cls];
        if (state == QuoteOpened && (previousBits & kLetterOrDigit)) state = Normal;

        switch (state) {
            case Normal:
                styles_[i] = QcbsFontStyleSettings::Standard;
                if (!word_.empty() && cls != WordChar) endWord(i);
                break;
            case InComment:
                styles_[i] = QcbsFontStyleSettings::Comment;
                word_.clear();
                break;
            case InTextField:
                styles_[i] = QcbsFontStyleSettings::String;
                word_.clear();
                break;
            case InDataName:
                styles_[i] = QcbsFontStyleSettings::CoreDataItem;
                break;
            case DataNameEnded:
                endDataName(i);  // leaves the separator's own style as it was
                break;
            default:
                styles_[i] = QcbsFontStyleSettings::Standard;
                word_.clear();
                break;
        }
        if (state != InComment && i > 0 && (text[i - 1] == '\\' || (i > 1 && text[i - 2] == '\\'))) {
            applyEscapeCodes(text, i, c, (bits & Letter) != 0);
        }
        if (bits & Rejected) styles_[i] = QcbsFontStyleSettings::InvalidCharacter;
        previousBits = bits;
    }

    if (hasMarkup || subscript_ || superscript_) {
        applyMarkup(text, size, paragraphLength);
        uniform_ = false;
    }
    if (state != InTextField) subscript_ = superscript_ = false;

    int packed = (state == InQuotedString || state == InTextField) ? state : Normal;
    if (subscript_) packed |= SubscriptFlag;
    if (superscript_) packed |= SuperscriptFlag;
    return packed;
}

// A run of plain characters in the Normal state: standard text, with bare
// words checked as they end. Returns where the run ends; the word still open
// there is left in word_ for the character-by-character path.
int QcbsCifLineClassifier::normalRun(const char16_t* text, int from, int size, bool& blankSoFar) {
    const CharacterTable& bitsOf = characterBits();
    SyntaxStyle* styles = styles_.data();
    bool blank = blankSoFar;
    // Words in the Normal state are contiguous, so an open word ends at `from`.
    int wordStart = word_.empty() ? -1 : from - static_cast<int>(word_.size());
    int filled = from;  // styles from here to i are to be made Standard
    int i = from;
    while (i < size) {
        const unsigned char bits = bitsOf.latin1(text[i]);
        if (bits & PlainWord) {
            if (wordStart < 0) wordStart = i;
            blank = false;
            for (++i; i < size && (bitsOf.latin1(text[i]) & PlainWord); ++i) {
            }
            continue;
        }
        if (!(bits & (PlainBlank | PlainSeparator))) break;
        // Only data_... and loop_ are styled, so shorter words and words
        // starting otherwise need no closer look.
        if (wordStart >= 0 && i - wordStart >= 5 && (text[wordStart] == 'd' || text[wordStart] == 'l')) {
            std::fill(styles + filled, styles + i + 1, QcbsFontStyleSettings::Standard);
            filled = i + 1;
            endWord(std::u16string_view(text + wordStart, static_cast<std::size_t>(i - wordStart)), i);
        }
        wordStart = -1;
        blank = blank && (bits & PlainBlank);
        for (++i; i < size && (bitsOf.latin1(text[i]) & PlainBlank); ++i) {
        }
    }
    std::fill(styles + filled, styles + i, QcbsFontStyleSettings::Standard);
    blankSoFar = blank;
    if (i == size && lineEnd_ == LineEnd::Separator) {
        // The blank standing for the line end ends the run, and any open word,
        // here too; no escape code can reach it over plain characters.
        styles[size] = QcbsFontStyleSettings::Standard;
        if (wordStart >= 0 && size - wordStart >= 5) {
            endWord(std::u16string_view(text + wordStart, static_cast<std::size_t>(size - wordStart)), size);
        }
        word_.clear();
        return size + 1;
    }
    if (wordStart >= 0) {
        word_.assign(text + wordStart, text + i);
    } else {
        word_.clear();
    }
    return i;
}

// A run of plain characters inside a comment, quoted string or text field:
// one style throughout.
int QcbsCifLineClassifier::plainRun(const char16_t* text, int from, int size, bool& blankSoFar,
                                    SyntaxStyle style) {
    const CharacterTable& bitsOf = characterBits();
    SyntaxStyle* styles = styles_.data();
    bool blank = blankSoFar;
    int i = from;
    for (; i < size; ++i) {
        const unsigned char bits = bitsOf.latin1(text[i]);
        if (!(bits & kPlain)) break;
        blank = blank && (bits & PlainBlank);
        styles[i] = style;
    }
    blankSoFar = blank;
    word_.clear();
    if (i == size && lineEnd_ == LineEnd::Separator) {
        styles[size] = style;  // the blank standing for the line end stays in the run
        return size + 1;
    }
    return i;
}

void QcbsCifLineClassifier::endWord(int position) {
    endWord(word_, position);
    word_.clear();
}

void QcbsCifLineClassifier::endWord(std::u16string_view word, int position) {
    const int length = static_cast<int>(word.size());
    if (length > 4 && word.compare(0, 5, u"data_") == 0) {
        setStyle(position - length, length, QcbsFontStyleSettings::Type);
        uniform_ = false;
    } else if (isKeyword(QStringView(word.data(), word.size()))) {
        setStyle(position - length, length, QcbsFontStyleSettings::Keyword);
        uniform_ = false;
    }
}

void QcbsCifLineClassifier::endDataName(int position) {
    const int length = static_cast<int>(word_.size());
    bool defined = false;
    if (dictionary_ != nullptr) {
        name_.clear();
        for (const char16_t c : word_) name_.push_back(c < 256 ? static_cast<char>(c) : '?');
        if (!name_.empty() && (name_.back() == '.' || name_.back() == ',')) name_.pop_back();
        defined = dictionary_->is_defined(name_);
    }
    if (!defined) setStyle(position - length, length, QcbsFontStyleSettings::CustomDataItem);
    word_.clear();
}

// Backslash codes: \a shows the backslash as a special character and the
// letter in the Symbol font; \%A, \'e and the like mark all three characters.
// A doubled backslash escapes itself.
void QcbsCifLineClassifier::applyEscapeCodes(const char16_t* text, int i, char16_t c, bool letter) {
    const char16_t p = text[i - 1];
    const char16_t pp = i > 1 ? text[i - 2] : 0;
    if (p == '\\' && c != '\\') {
        if (pp == '\\') return;
        styles_[i - 1] = QcbsFontStyleSettings::SpecialCharNormal;
        styles_[i] =
            letter ? QcbsFontStyleSettings::SpecialCharSymbol : QcbsFontStyleSettings::SpecialCharNormal;
    } else if (pp == '\\' && letter && isEscapedLetterCode(p)) {
        styles_[i - 2] = styles_[i - 1] = styles_[i] = QcbsFontStyleSettings::SpecialCharNormal;
    }
}

// ^ opens and closes superscript, ~ subscript; one opening ends the other.
// The pass looks past comments, quotes and text-field boundaries; a marker
// right after a backslash is an ordinary character.
void QcbsCifLineClassifier::applyMarkup(const char16_t* text, int size, int paragraphLength) {
    bool escaped = false;
    for (int i = 0; i < paragraphLength; ++i) {
        const char16_t c = i < size ? text[i] : u' ';
        if (superscript_ && c != '^') styles_[i] = QcbsFontStyleSettings::Superscript;
        if (subscript_ && c != '~') styles_[i] = QcbsFontStyleSettings::Superscript;
        if (!escaped) {
            if (c == '^') {
                styles_[i] = QcbsFontStyleSettings::SMarker;
                if (!superscript_) subscript_ = false;
                superscript_ = !superscript_;
            } else if (c == '~') {
                styles_[i] = QcbsFontStyleSettings::SMarker;
                if (!subscript_) superscript_ = false;
                subscript_ = !subscript_;
            }
        }
        escaped = c == '\\';
    }
}

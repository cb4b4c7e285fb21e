#include "records/JSONDecoder.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include <nlohmann/json.hpp>

#include "JSONInteger.hpp"
#include "foundation/NumberText.hpp"

namespace zelto::records {
namespace {

using Kind = Schema::Kind;

/// "[id] parse error at line 1, column 9: syntax error while parsing value - reason; last read: 'x'; expected
/// y": what is for people is the reason and what was expected; the place is told anew.
std::string reasonOf(std::string_view message) {
    for (const std::string_view lead : {"] ", ": ", " - "})
        if (const auto at = message.find(lead); at != std::string_view::npos)
            message.remove_prefix(at + lead.size());
    std::string reason(message.substr(0, message.find("; last read: ")));
    const auto expected = message.rfind("; expected ");
    if (reason.size() < message.size() && expected != std::string_view::npos)
        reason += message.substr(expected);
    return reason;
}

/// What the parser's events are turned into: values at their places. One frame per open object or array that
/// somebody asked for; everything under an unknown key is only counted.
class Sink {
  public:
    Sink(std::string_view document, const Schema& schema, void* root, std::size_t maximumDepth)
        : document_(document), root_{&schema, root}, maximumDepth_(maximumDepth) {
        frames_.reserve(16);
    }

    bool null() {
        if (skips()) return true;
        const Target target = next();
        return target.schema->kind == Kind::optional || mismatch(target, "null");
    }
    bool boolean(bool value) {
        if (skips()) return true;
        const Target target = unwrap(next());
        if (target.schema->kind != Kind::boolean) return mismatch(target, value ? "true" : "false");
        *static_cast<bool*>(target.value) = value;
        return true;
    }
    bool number_integer(std::int64_t value) {
        if (skips()) return true;
        const Target target = unwrap(next());
        // The parser calls this only for a token with a minus sign, so a zero was written as "-0".
        if (isNumber(target)) return assign(target, value == 0 ? -0.0 : static_cast<double>(value));
        if (target.schema->kind == Kind::integer) {
            *static_cast<std::int64_t*>(target.value) = value;
            return true;
        }
        if (target.schema->kind == Kind::unsignedInteger && value == 0) {
            *static_cast<std::uint64_t*>(target.value) = 0;
            return true;
        }
        return mismatch(target, value == 0 ? "-0" : std::to_string(value));
    }
    bool number_unsigned(std::uint64_t value) {
        if (skips()) return true;
        const Target target = unwrap(next());
        if (isNumber(target)) return assign(target, static_cast<double>(value));
        if (integer(target, {.negative = false, .magnitude = value})) return true;
        return mismatch(target, std::to_string(value));
    }
    bool number_float(double value, const std::string& token) {
        if (skips()) return true;
        const Target target = unwrap(next());
        if (isNumber(target)) {
            if (value == 0 && !isZeroToken(token)) return mismatch(target, token + ", which is too small");
            return assign(target, value);
        }
        const auto exact = exactInteger(token);
        return (exact && integer(target, *exact)) || mismatch(target, token);
    }
    bool string(const std::string& value) {
        if (skips()) return true;
        const Target target = unwrap(next());
        if (target.schema->kind == Kind::string) {
            *static_cast<std::string*>(target.value) = value;
            return true;
        }
        if (!target.schema->parse) return mismatch(target, "a string");
        return target.schema->parse(target.value, value) || fail("not " + std::string(target.schema->name));
    }
    bool binary(const nlohmann::json::binary_t&) { return false; }  // not a thing of JSON texts

    bool start_object(std::size_t) {
        if (skipsContainer()) return true;
        const Target target = unwrap(next());
        if (target.schema->kind != Kind::record && target.schema->kind != Kind::choice)
            return mismatch(target, "an object");
        return open(target);
    }
    bool key(const std::string& key) {
        if (skipDepth_ > 0) return true;
        Frame& frame = frames_.back();
        skipNext_ = false;
        if (frame.schema->kind == Kind::choice) {
            if (frame.seen != 0) return fail("expected " + std::string(frame.schema->name));
            for (std::size_t i = 0; i < frame.schema->cases.size(); ++i)
                if (frame.schema->cases[i].name == key) return mark(frame, i);
            return failHere("unknown case \"" + key + "\"");
        }
        const auto fields = frame.schema->fields;
        // Writers keep to the table's order, so the field behind the last one is nearly always the one.
        for (std::size_t step = 0, i = frame.current; step < fields.size(); ++step) {
            i = i + 1 < fields.size() ? i + 1 : 0;
            if (fields[i].name != key) continue;
            if ((frame.seen >> i & 1) == 0) return mark(frame, i);
            break;  // the first of duplicate keys has won
        }
        skipNext_ = true;
        return true;
    }
    bool end_object() {
        if (leavesSkipped()) return true;
        const Frame& frame = frames_.back();
        if (frame.schema->kind == Kind::choice) {
            if (frame.seen == 0) return failHere("expected " + std::string(frame.schema->name));
        } else {
            for (std::size_t i = 0; i < frame.schema->fields.size(); ++i) {
                if (frame.schema->fields[i].isOptional || (frame.seen >> i & 1) != 0) continue;
                frames_.back().current = i;
                return fail("missing");
            }
        }
        frames_.pop_back();
        return true;
    }
    bool start_array(std::size_t) {
        if (skipsContainer()) return true;
        const Target target = unwrap(next());
        if (target.schema->kind != Kind::list) return mismatch(target, "an array");
        return open(target);
    }
    bool end_array() {
        if (!leavesSkipped()) frames_.pop_back();
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& exception) {
        return failAt(position == 0 ? 0 : position - 1, reasonOf(exception.what()));
    }

    bool failAt(std::size_t offset, std::string reason) {
        const std::string_view before = document_.substr(0, offset);
        const auto line = std::ranges::count(before, '\n') + 1;
        const auto start = before.rfind('\n') == std::string_view::npos ? 0 : before.rfind('\n') + 1;
        const auto column =
            std::ranges::count_if(before.substr(start), [](char c) { return (c & 0xC0) != 0x80; }) + 1;
        fault_ = {"line " + std::to_string(line) + ", column " + std::to_string(column), std::move(reason)};
        return false;
    }

    /// The reason why a document was rejected.
    Fault takeFault() { return std::move(fault_); }

  private:
    struct Target {
        const Schema* schema;
        void* value;
    };
    struct Frame {
        const Schema* schema;
        void* value;
        std::uint64_t seen = 0;
        std::size_t current = 0;  // index of the field, case or element that is being read
    };

    /// True for a value under an unknown key, which it uses up.
    bool skips() {
        if (skipDepth_ > 0) return true;
        return std::exchange(skipNext_, false);
    }
    bool skipsContainer() {
        if (skipDepth_ == 0 && !skipNext_) return false;
        skipNext_ = false;
        ++skipDepth_;
        return true;
    }
    bool leavesSkipped() {
        if (skipDepth_ == 0) return false;
        --skipDepth_;
        return true;
    }

    bool mark(Frame& frame, std::size_t i) {
        frame.seen |= std::uint64_t{1} << i;
        frame.current = i;
        return true;
    }

    /// The place of the value that comes next.
    Target next() {
        if (frames_.empty()) return root_;
        Frame& frame = frames_.back();
        switch (frame.schema->kind) {
            case Kind::list:
                frame.current = frame.schema->count(frame.value);
                return {&frame.schema->element(), frame.schema->append(frame.value)};
            case Kind::choice: {
                const auto& chosen = frame.schema->cases[frame.current];
                return {&chosen.schema(), chosen.select(frame.value)};
            }
            default: {
                const auto& field = frame.schema->fields[frame.current];
                return {&field.schema(), field.address(frame.value)};
            }
        }
    }
    /// A present value: an optional is engaged for it.
    static Target unwrap(Target target) {
        while (target.schema->kind == Kind::optional)
            target = {&target.schema->element(), target.schema->append(target.value)};
        return target;
    }
    bool open(Target target) {
        if (frames_.size() >= maximumDepth_) return fail("nested too deeply");
        // The first key is looked for at the table's start.
        const std::size_t beforeFirst = target.schema->kind == Kind::record && !target.schema->fields.empty()
                                            ? target.schema->fields.size() - 1
                                            : 0;
        frames_.push_back({target.schema, target.value, 0, beforeFirst});
        return true;
    }

    static bool isNumber(Target target) {
        return target.schema->kind == Kind::real || target.schema->kind == Kind::date;
    }
    static bool assign(Target target, double value) {
        if (target.schema->kind == Kind::date)
            static_cast<Date*>(target.value)->sinceReference = value;
        else
            *static_cast<double*>(target.value) = value;
        return true;
    }
    static bool integer(Target target, ExactInteger exact) {
        constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
        if (target.schema->kind == Kind::unsignedInteger && (!exact.negative || exact.magnitude == 0)) {
            *static_cast<std::uint64_t*>(target.value) = exact.magnitude;
            return true;
        }
        if (target.schema->kind != Kind::integer || exact.magnitude > largest + (exact.negative ? 1 : 0))
            return false;
        *static_cast<std::int64_t*>(target.value) =
            static_cast<std::int64_t>(exact.negative ? std::uint64_t{0} - exact.magnitude : exact.magnitude);
        return true;
    }

    bool mismatch(Target target, const std::string& found) {
        const std::string_view expected =
            target.schema->kind == Kind::record ? std::string_view("an object") : target.schema->name;
        return fail("expected " + std::string(expected) + ", found " + found);
    }
    bool fail(std::string reason) {
        fault_ = {path(frames_.size()), std::move(reason)};
        return false;
    }
    /// A fault of the innermost open object itself, not of a value in it.
    bool failHere(std::string reason) {
        fault_ = {path(frames_.size() - 1), std::move(reason)};
        return false;
    }
    std::string path(std::size_t frames) const {
        std::string out;
        for (std::size_t i = 0; i < frames; ++i) {
            const Frame& frame = frames_[i];
            if (frame.schema->kind == Kind::list) {
                out += '[' + std::to_string(frame.current) + ']';
                continue;
            }
            if (!out.empty()) out += '.';
            out += frame.schema->kind == Kind::choice ? frame.schema->cases[frame.current].name
                                                      : frame.schema->fields[frame.current].name;
        }
        return out.empty() ? "the document" : out;
    }

    std::string_view document_;
    Target root_;
    Fault fault_;
    std::size_t maximumDepth_;
    std::vector<Frame> frames_;
    std::size_t skipDepth_ = 0;
    bool skipNext_ = false;
};

}  // namespace

Result<void> decodeJSON(
    std::string_view document, const Schema& schema, void* value, std::size_t maximumDepth) {
    Sink sink(document, schema, value, maximumDepth);
    // The parser takes a NUL for the end of its input, and no JSON text holds one: what stands before it is
    // parsed for a fault that comes earlier.
    const auto nul = document.find('\0');
    const std::string_view text = document.substr(0, nul);
    const bool isDecoded = document.find_first_not_of(" \t\r\n") == std::string_view::npos
                               ? sink.failAt(0, "the document is empty")
                               : nlohmann::json::sax_parse(text.data(), text.data() + text.size(), &sink) &&
                                     (nul == std::string_view::npos || sink.failAt(nul, "a NUL byte"));
    if (isDecoded) return {};
    return sink.takeFault();
}

}  // namespace zelto::records

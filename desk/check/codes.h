// The codes of findings.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>

namespace qz::desk {

enum class severity : uint8_t { note, warning, error };
constexpr std::string_view severity_names[] = {"note", "warning", "error"};

struct finding_code {
    std::string_view code; // short and stable
    severity level;        // of most findings of the code
    std::string_view why;  // it matters: what the library does with it
};

// clang-format off
inline constexpr finding_code finding_codes[] = {
    // The container and its records.
    {"refused", severity::error,
     "The library makes no context from the container: the camera does not start with it."},
    {"record-size", severity::error,
     "The library refuses a container with a record that is shorter than its header or reaches past its list."},
    {"set-container-short", severity::error,
     "The library refuses a container in which a set container ends within the header that its tag opens."},
    {"id-refused", severity::error,
     "The library refuses a container with an id of the 320 family that has no meaning."},
    {"record-short", severity::error,
     "The library reads the values that the record ends before as 0."},
    {"rows-missing", severity::error,
     "The library uses the rows that the record holds whole, and logs it."},
    {"rows-unstated", severity::warning,
     "The library reads as many rows as the record's count says; what stands behind them it does not look at."},
    {"rows-none", severity::warning,
     "The record fills its slot, so that no other is taken, but its block keeps what the frame before left; those of "
     "long_5 and long_6 take their defaults, macc starts from the identity."},
    {"fringe-tail-missing", severity::error,
     "The library takes exponent 1, or leaves fields 0 to 3 as the frame before left them, instead."},
    {"bytes-unread", severity::note,
     "The library does not read the bytes behind a record's contents."},
    {"trailing-bytes", severity::note,
     "Up to 8 bytes behind the last record of a list are no record, whatever they say."},
    {"record-replaced", severity::warning,
     "A slot holds one record: the last one of the container is used, the others are not."},
    {"record-unknown", severity::note,
     "The library skips records of ids outside its families."},
    {"record-dropped", severity::note,
     "No slot takes a record of this id: the library drops it."},
    {"record-unread", severity::note,
     "The library holds the record, but no block reads it."},
    {"version-unknown", severity::note,
     "The library tells versions 100 to 102 apart, and reads others as one of them."},
    {"value-ignored", severity::warning,
     "The library does not read the value here."},
    {"value-truncated", severity::warning,
     "The block has fewer bits than the value and keeps the low ones."},
    {"value-negative", severity::warning,
     "The block stores the value as an unsigned number of 32 bits: a negative one becomes a very large one."},
    // Rows and values.
    {"keys-descending", severity::warning,
     "The library takes the rows around a gain by their keys, so that it finds them in any order; who reads or changes "
     "the table does not, and a key out of order is often mistyped."},
    {"keys-equal", severity::warning,
     "Of rows with equal keys the library takes the first at every gain: the others are never used."},
    {"key-out-of-range", severity::warning,
     "Gains have 16 bits, 256 being unity: beyond them only the nearest row is used, and never reached."},
    {"key-below-unity", severity::warning,
     "A gain below 256 comes only from a total of 256.0 and more, which wraps: at all others the row is not used."},
    {"interpolation-wraps", severity::warning,
     "Between the two rows the library multiplies their difference by the distance from the lower key in 32 bits: the "
     "product wraps, and the value lies far from both rows."},
    {"gain-not-monotonic", severity::note,
     "Noise and sharpness change one way with the gain, and so do their parameters: a step back is often mistyped."},
    {"curve-not-monotonic", severity::warning,
     "The values stand along a curve that goes one way: the hardware looks up segments between its positions, and a step "
     "back leaves one without a place."},
    {"row-jump", severity::warning,
     "Between the two rows the value changes far more than elsewhere in its column: a visible step over the gain, often "
     "a digit too many or too few."},
    {"set-jump", severity::warning,
     "Where frames change between the sets the value changes far more than the rest of its record: often a digit too "
     "many or too few."},
    {"clipped-everywhere", severity::warning,
     "The block limits the value at every row, so that the table has no effect here."},
    {"clipped-in-rows", severity::note,
     "The block limits the value at some of the rows."},
    {"value-wraps", severity::warning,
     "The product of point and scale has more than 32 bits and wraps."},
    {"strength-clipped", severity::note,
     "Every strength of one sign gives the block's limit at all rows: the control has no range there."},
    {"strength-wraps", severity::warning,
     "A strong setting gives less than a weak one: the scaled value keeps its low 16 bits before it is limited."},
    {"entry-ignored", severity::warning,
     "Types are 0, a base set, and 1 to 4, in place of an effect's table: others are not read."},
    {"entry-hidden", severity::warning,
     "Of base sets with equal keys the first is taken, of tables for one effect the last."},
    {"base-set-missing", severity::warning,
     "In every tuning_mode but 1 the base set of key 0 is taken: without one the sectors start from the identity."},
    // Selection.
    {"rules-short", severity::error,
     "The library ignores the rule record."},
    {"rules-missing", severity::error,
     "The library uses no rule of a record that states more than it holds."},
    {"rules-replaced", severity::warning,
     "A container has one list of rules: that of its last rule record."},
    {"rules-unused", severity::warning,
     "With set index 0 alone the library does not look at rules."},
    {"rules-not-compared", severity::note,
     "Comparing each with all before it takes too long here: neither rules that others hide are looked for nor areas "
     "that are no product of two 16-bit numbers."},
    {"rule-never-holds", severity::warning,
     "No frame has such an area, so that the rule selects nothing. Areas are products of two 16-bit numbers; from 2^31 "
     "on they are negative."},
    {"rule-always-holds", severity::note,
     "The rule holds for every frame that has the geometry."},
    {"rule-index-missing", severity::warning,
     "A rule that holds takes the records of its set index: here there are none that a block reads."},
    {"rule-index-0", severity::note,
     "Set index 0 fills what is empty anyway: the rule only keeps the rules behind it from filling it first."},
    {"rule-hidden", severity::warning,
     "Rules fill what those before them left empty: when an earlier one holds whenever this one does, records of the "
     "slots that both have are never taken from this one."},
    {"index-unused", severity::warning,
     "Frames take the records of a set index by a rule that names it."},
    {"block-without-record", severity::note,
     "The block takes its defaults."},
};
// clang-format on

// A code that is in the list, which the compiler sees to.
struct listed_code {
    consteval listed_code(const char *text) : code(find(text)) {} // NOLINT(*-explicit-*): stands for its text

    const finding_code *code;

  private:
    static consteval const finding_code *find(std::string_view text)
    {
        for (const finding_code &each : finding_codes)
            if (each.code == text)
                return &each;
        std::abort(); // which the compiler cannot evaluate: it does not compile
    }
};

// Of a problem that a reader of containers names.
constexpr const finding_code &code_of(std::string_view text)
{
    for (const finding_code &each : finding_codes)
        if (each.code == text)
            return each;
    return finding_codes[0];
}

} // namespace qz::desk

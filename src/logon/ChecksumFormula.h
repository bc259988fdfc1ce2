#pragma once

#include "logon/Bytes.h"

#include <optional>
#include <string_view>
#include <vector>

namespace logon {

// The server's version-check formula, compiled once into a short list of operations over the
// variables A, B, C and the current file word S.
class ChecksumFormula {
public:
    struct State {
        std::uint32_t a = 0, b = 0, c = 0;
    };

    // Blank-separated tokens: "X=digits" seeds X, "X=YoZ" with o one of + - ^ is an
    // operation; tokens without "=" (the operation count) are skipped. Anything else, or a
    // formula without operations, is refused.
    static std::optional<ChecksumFormula> parse(std::string_view text);

    State initialState() const { return initial_; }

    // Runs the operations once per little-endian word; a trailing partial word is ignored.
    void run(State& state, ByteView data) const { kernel_(state, ops_.data(), ops_.size(), data); }

    enum Var : std::uint8_t { A, B, C, S };
    enum class Operator : std::uint8_t { Add, Sub, Xor };
    struct Op {
        Var dest, lhs, rhs;
        Operator op;
    };

private:
    using Kernel = void (*)(State&, const Op*, std::size_t, ByteView);

    ChecksumFormula(State initial, std::vector<Op> ops);

    State initial_;
    std::vector<Op> ops_;
    Kernel kernel_;
};

} // namespace logon

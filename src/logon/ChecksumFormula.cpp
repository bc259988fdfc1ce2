#include "logon/ChecksumFormula.h"

#include <bit>
#include <charconv>
#include <cstring>
#include <utility>

namespace logon {

namespace {

using Op = ChecksumFormula::Op;
using Operator = ChecksumFormula::Operator;
using State = ChecksumFormula::State;

std::optional<ChecksumFormula::Var> variable(char c, bool allowWord) {
    switch (c) {
    case 'A':
        return ChecksumFormula::A;
    case 'B':
        return ChecksumFormula::B;
    case 'C':
        return ChecksumFormula::C;
    case 'S':
        if (allowWord) return ChecksumFormula::S;
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

std::optional<Operator> binaryOperator(char c) {
    switch (c) {
    case '+':
        return Operator::Add;
    case '-':
        return Operator::Sub;
    case '^':
        return Operator::Xor;
    default:
        return std::nullopt;
    }
}

template <Operator O> inline std::uint32_t apply(std::uint32_t x, std::uint32_t y) {
    if constexpr (O == Operator::Add)
        return x + y;
    else if constexpr (O == Operator::Sub)
        return x - y;
    else
        return x ^ y;
}

inline std::uint32_t apply(Operator o, std::uint32_t x, std::uint32_t y) {
    switch (o) {
    case Operator::Add:
        return x + y;
    case Operator::Sub:
        return x - y;
    case Operator::Xor:
        break;
    }
    return x ^ y;
}

inline std::uint32_t wordAt(const std::uint8_t* p) {
    std::uint32_t word;
    std::memcpy(&word, p, sizeof word);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap32(word);
    return word;
}

// Any formula: the variables live in a small array indexed by the compiled operations.
void genericKernel(State& state, const Op* ops, std::size_t count, ByteView data) {
    std::uint32_t v[4] = {state.a, state.b, state.c, 0};
    const std::uint8_t* p = data.data();
    for (std::size_t n = data.size() / 4; n > 0; --n, p += 4) {
        v[ChecksumFormula::S] = wordAt(p);
        for (std::size_t i = 0; i < count; ++i)
            v[ops[i].dest] = apply(ops[i].op, v[ops[i].lhs], v[ops[i].rhs]);
    }
    state = {v[0], v[1], v[2]};
}

// The shape every server sends, "A=A?S B=B?C C=C?A A=A?B", with its four operators fixed at
// compile time, so the loop is four register operations per word.
template <Operator O1, Operator O2, Operator O3, Operator O4>
void standardKernel(State& state, const Op*, std::size_t, ByteView data) {
    std::uint32_t a = state.a, b = state.b, c = state.c;
    const std::uint8_t* p = data.data();
    for (std::size_t n = data.size() / 4; n > 0; --n, p += 4) {
        a = apply<O1>(a, wordAt(p));
        b = apply<O2>(b, c);
        c = apply<O3>(c, a);
        a = apply<O4>(a, b);
    }
    state = {a, b, c};
}

using Kernel = void (*)(State&, const Op*, std::size_t, ByteView);

template <std::size_t... I> constexpr auto standardKernels(std::index_sequence<I...>) {
    constexpr auto op = [](std::size_t index, int place) {
        for (int i = 0; i < place; ++i)
            index /= 3;
        return Operator(index % 3);
    };
    return std::array<Kernel, sizeof...(I)>{
        &standardKernel<op(I, 0), op(I, 1), op(I, 2), op(I, 3)>...};
}

constexpr auto kStandardKernels = standardKernels(std::make_index_sequence<81>());

Kernel chooseKernel(const std::vector<Op>& ops) {
    using F = ChecksumFormula;
    constexpr F::Var kShape[4][3] = {
        {F::A, F::A, F::S}, {F::B, F::B, F::C}, {F::C, F::C, F::A}, {F::A, F::A, F::B}};
    if (ops.size() != 4) return &genericKernel;
    std::size_t index = 0;
    for (int i = 3; i >= 0; --i) {
        const Op& op = ops[i];
        if (op.dest != kShape[i][0] || op.lhs != kShape[i][1] || op.rhs != kShape[i][2])
            return &genericKernel;
        index = index * 3 + std::size_t(op.op);
    }
    return kStandardKernels[index];
}

} // namespace

ChecksumFormula::ChecksumFormula(State initial, std::vector<Op> ops)
    : initial_(initial), ops_(std::move(ops)), kernel_(chooseKernel(ops_)) {}

std::optional<ChecksumFormula> ChecksumFormula::parse(std::string_view text) {
    State initial;
    std::vector<Op> ops;
    while (!text.empty()) {
        const auto end = text.find(' ');
        const std::string_view token = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (token.find('=') == std::string_view::npos) continue;
        if (token.size() < 3 || token[1] != '=') return std::nullopt;
        const auto dest = variable(token[0], false);
        if (!dest) return std::nullopt;

        const std::string_view value = token.substr(2);
        if (value[0] >= '0' && value[0] <= '9') {
            std::uint32_t number = 0;
            const auto [rest, error] =
                std::from_chars(value.data(), value.data() + value.size(), number);
            if (error != std::errc() || rest != value.data() + value.size()) return std::nullopt;
            (*dest == A ? initial.a : *dest == B ? initial.b : initial.c) = number;
            continue;
        }
        if (value.size() != 3) return std::nullopt;
        const auto lhs = variable(value[0], true);
        const auto op = binaryOperator(value[1]);
        const auto rhs = variable(value[2], true);
        if (!lhs || !op || !rhs) return std::nullopt;
        ops.push_back({*dest, *lhs, *rhs, *op});
    }
    if (ops.empty()) return std::nullopt;
    return ChecksumFormula(initial, std::move(ops));
}

} // namespace logon

// Everything the logon reads from outside: product keys typed by the user, the server's
// version-check formula and archive name, and game executables on disk. The first byte
// picks the reader.

#include "logon/BncsUtil.h"
#include "logon/ChecksumFormula.h"
#include "logon/PeVersion.h"
#include "logon/ProductKey.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const logon::ByteView input(data + 1, size - 1);
    const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());
    switch (data[0] % 3) {
    case 0:
        if (const auto key = logon::ProductKey::decode(text)) {
            (void)key->hash(1, 2);
            if (key->val2().size() != 4 && key->val2().size() != 10) __builtin_trap();
        }
        break;
    case 1:
        (void)logon::extractMPQNumber(text);
        if (const auto formula = logon::ChecksumFormula::parse(text)) {
            auto state = formula->initialState();
            formula->run(state, input);
        }
        break;
    default:
        (void)logon::peProductVersion(input);
        break;
    }
    return 0;
}

// Takes a fuzzer's input apart: a few choices at its head, the bytes behind them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

class FuzzedBytes {
  public:
    FuzzedBytes(const std::uint8_t* bytes, std::size_t size)
        : m_bytes(reinterpret_cast<const char*>(bytes), size) {}

    /// The next byte, below `bound`; 0 when there is none left.
    unsigned choice(unsigned bound) {
        if (m_bytes.empty())
            return 0;
        const auto byte = static_cast<unsigned char>(m_bytes.front());
        m_bytes.remove_prefix(1);
        return byte % bound;
    }
    std::string_view rest() const { return m_bytes; }

  private:
    std::string_view m_bytes;
};

/// Ends the run with a crash that the fuzzer keeps.
inline void require(bool holds) {
    if (!holds)
        __builtin_trap();
}

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quillet::rds {

/// Networks from which clients are admitted. An IPv4 address in its IPv6 form (::ffff:10.0.0.1)
/// counts as the IPv4 address.
class AddressList {
public:
    /// Reads networks in CIDR notation, such as "10.20.0.0/16, 192.168.1.7, fd00::/8", separated
    /// by commas or blanks. An address without a length is that one address.
    /// @throws data::Error 3001 with a sentence about the first one that is none: unreadable, too
    ///         long a prefix, or bits behind the prefix (of "10.0.0.1/8" nobody knows whether one
    ///         address or sixteen million are meant); or about a text without any.
    static AddressList parse(std::string_view text);

    /// This machine alone: 127.0.0.0/8 and ::1.
    static AddressList loopback();

    /// @param address numeric, without brackets and port; anything else is on no list.
    bool contains(std::string_view address) const;

private:
    struct Network {
        bool v4;
        std::array<std::uint8_t, 16> address; ///< an IPv4 one in the first four
        unsigned bits;                        ///< that count, from the first on
    };

    static Network networkOf(std::string_view text);

    std::vector<Network> networks_;
};

} // namespace quillet::rds

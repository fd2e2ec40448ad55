// SPDX-License-Identifier: MIT
//
// Gives files access control lists, as the kernel takes them.
#pragma once

#include <endian.h>
#include <linux/posix_acl.h>
#include <linux/posix_acl_xattr.h>
#include <sys/xattr.h>

#include <string>
#include <vector>

namespace gw::test {

struct ListEntry {
    unsigned tag;
    unsigned permissions;
    unsigned id = 0xFFFFFFFFU;  ///< of the user or the group, for those that have a name
};

/// The entries in the order of their tags, of one tag in that of the ids. False when the file system has no
/// such lists.
inline bool set_access_list(const std::string& path, const std::vector<ListEntry>& entries) {
    std::string bytes;
    const auto add = [&bytes](const auto& part) {
        bytes.append(reinterpret_cast<const char*>(&part), sizeof part);  // NOLINT: as it lies in memory
    };
    add(posix_acl_xattr_header{htole32(POSIX_ACL_XATTR_VERSION)});
    for (const ListEntry& entry : entries) {
        add(posix_acl_xattr_entry{htole16(static_cast<__u16>(entry.tag)),
                                  htole16(static_cast<__u16>(entry.permissions)), htole32(entry.id)});
    }
    return ::setxattr(path.c_str(), "system.posix_acl_access", bytes.data(), bytes.size(), 0) == 0;
}

}  // namespace gw::test

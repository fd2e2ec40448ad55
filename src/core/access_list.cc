// SPDX-License-Identifier: MIT
//
// The list is read as the kernel hands it out, which costs one call where there is none.
#include "core/access_list.h"

#include <endian.h>
#include <linux/posix_acl.h>
#include <linux/posix_acl_xattr.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace gw {

namespace {

struct Entry {
    unsigned tag = 0;
    unsigned permissions = 0;
    unsigned id = 0;
};
using Entries = std::vector<Entry>;

/// The entries of a list; none when it is not of the form that is known.
Entries entries_in(const std::string& bytes) {
    Entries entries;
    posix_acl_xattr_header header = {};
    if (bytes.size() < sizeof header) return entries;
    std::memcpy(&header, bytes.data(), sizeof header);
    if (le32toh(header.a_version) != POSIX_ACL_XATTR_VERSION) return entries;
    for (std::size_t at = sizeof header; bytes.size() - at >= sizeof(posix_acl_xattr_entry);) {
        posix_acl_xattr_entry entry = {};
        std::memcpy(&entry, bytes.data() + at, sizeof entry);
        entries.push_back({le16toh(entry.e_tag), le16toh(entry.e_perm), le32toh(entry.e_id)});
        at += sizeof entry;
    }
    return entries;
}

Entries list_of(const std::string& path) {
    constexpr const char* NAME = "system.posix_acl_access";
    const ssize_t size = ::getxattr(path.c_str(), NAME, nullptr, 0);
    if (size <= 0) return {};
    std::string bytes(static_cast<std::size_t>(size), '\0');
    const ssize_t got = ::getxattr(path.c_str(), NAME, bytes.data(), bytes.size());
    if (got <= 0) return {};
    bytes.resize(static_cast<std::size_t>(got));
    return entries_in(bytes);
}

/// The permissions of the entry with that tag, and `all` where there is none.
unsigned permissions_of(const Entries& entries, unsigned tag, unsigned all) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [tag](const Entry& entry) { return entry.tag == tag; });
    return found != entries.end() ? found->permissions : all;
}

ListVerdict verdict(bool is_granted, ListVerdict refusal) {
    return is_granted ? ListVerdict::GRANTED : refusal;
}

}  // namespace

ListVerdict access_by_list(const std::string& path, const struct stat& info, uid_t user,
                           const std::vector<gid_t>& groups, mode_t needed) {
    // Linux looks at a list only where its mask, which is in the place of the group's bits, gives anything.
    if ((info.st_mode & S_IRWXG) == 0) return ListVerdict::NO_LIST;
    const Entries entries = list_of(path);
    if (entries.empty()) return ListVerdict::NO_LIST;
    const auto has = [needed](unsigned permissions) { return (needed & ~permissions) == 0; };
    constexpr unsigned ALL = S_IRWXO;
    if (user == info.st_uid)
        return verdict(has(permissions_of(entries, ACL_USER_OBJ, 0)), ListVerdict::REFUSED);

    const unsigned mask = permissions_of(entries, ACL_MASK, ALL);
    bool is_named = false;
    for (const Entry& entry : entries) {
        if (entry.tag == ACL_USER && entry.id == user)
            return verdict(has(entry.permissions & mask), ListVerdict::REFUSED_BY_NAME);
    }
    for (const Entry& entry : entries) {
        if (entry.tag != ACL_GROUP_OBJ && entry.tag != ACL_GROUP) continue;
        const gid_t group = entry.tag == ACL_GROUP_OBJ ? info.st_gid : entry.id;
        if (std::find(groups.begin(), groups.end(), group) == groups.end()) continue;
        if (has(entry.permissions & mask)) return ListVerdict::GRANTED;
        is_named = true;
    }
    if (is_named) return ListVerdict::REFUSED_BY_NAME;
    return verdict(has(permissions_of(entries, ACL_OTHER, 0)), ListVerdict::REFUSED);
}

}  // namespace gw

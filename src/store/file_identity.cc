// SPDX-License-Identifier: MIT
#include "store/file_identity.h"

#include <algorithm>

#include "store/numbers.h"

namespace gw {

FileIdentity FileIdentity::of(const struct stat& info) {
    return {info.st_ino, Content{info.st_size, info.st_mtim.tv_sec, info.st_mtim.tv_nsec}};
}

bool FileIdentity::fits(const struct stat& info) const {
    const FileIdentity other = of(info);
    return S_ISREG(info.st_mode) && inode == other.inode && (!content || content == other.content);
}

std::string FileIdentity::text() const {
    std::string words = std::to_string(inode);
    if (content) {
        words += ' ' + std::to_string(content->size) + ' ' + std::to_string(content->seconds) + ' ' +
                 std::to_string(content->nanoseconds);
    }
    return words;
}

std::string_view take_word(std::string_view& rest) {
    const std::string_view word = rest.substr(0, rest.find(' '));
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    return word;
}

std::optional<FileIdentity> take_stamp(std::string_view& rest, bool with_content) {
    const auto inode = number_in<ino_t>(take_word(rest));
    if (!inode) return std::nullopt;
    if (!with_content) return FileIdentity{*inode};
    const auto size = number_in<off_t>(take_word(rest));
    const auto seconds = number_in<time_t>(take_word(rest));
    const auto nanoseconds = number_in<long>(take_word(rest));
    if (!size || !seconds || !nanoseconds) return std::nullopt;
    return FileIdentity{*inode, FileIdentity::Content{*size, *seconds, *nanoseconds}};
}

}  // namespace gw

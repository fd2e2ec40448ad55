// SPDX-License-Identifier: MIT
//
// To which package of the distribution a file belongs, as the package manager says: `dpkg-query -S`, or
// `rpm -qf` where there is no dpkg. Where there is neither, nothing is known.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/failure.h"

namespace gw {

/// By path, as it was asked for; a file of no package, or of an unknown one, has none.
using PackageOwners = std::map<std::string, std::string>;

/// Asks the package manager about all files in one call, by the path to which the links on the way to each
/// lead. A file that does not belong to the superuser is in no package, and is not asked about. A shared file
/// has several names of packages, separated by ", ". Takes a third of a second. Fails when the package
/// manager does not answer: then the files may be in packages.
Result<PackageOwners> ask_package_owners(const std::vector<std::string>& paths);

/// The same from memory, for the files of one action: `ask_package_owners` about those that were not asked
/// about since the last `forget_package_owners`. After a failure nothing is asked until then.
Result<PackageOwners> package_owners(const std::vector<std::string>& paths);
void forget_package_owners();

/// Those of the packages that are installed here, as `dpkg-query -W` says in one call; none where there is no
/// dpkg, or where it does not answer.
[[nodiscard]] std::set<std::string> installed_packages(const std::vector<std::string>& packages);

/// The pattern of `dpkg-query -S` that means exactly this path.
[[nodiscard]] std::string dpkg_pattern(std::string_view path);
/// From the answer of `dpkg-query -S`: lines "PACKAGE[:ARCHITECTURE][, PACKAGE...]: PATH"; lines about
/// diversions are left out.
[[nodiscard]] PackageOwners parse_dpkg_answer(std::string_view answer);
/// From the answer of `rpm -qf` with one line for each of `paths`: the name of the package, or a sentence.
/// One path may have several lines. Empty when the lines and the paths do not match.
[[nodiscard]] PackageOwners parse_rpm_answer(std::string_view answer, const std::vector<std::string>& paths);

}  // namespace gw

// SPDX-License-Identifier: MIT
#include "core/gw_fspec_list.h"

#include <algorithm>

#include "core/gw_buf_file.h"
#include "core/gw_dir.h"
#include "core/gw_reg_exp.h"

namespace {

template <class Wanted>
void copy_if(const GW_FSPEC_LIST& from, GW_FSPEC_LIST& out, Wanted wanted) {
    for (const GW_FILE_SPEC* spec : from) {
        if (wanted(*spec)) out.append(new GW_FILE_SPEC(spec));
    }
}

}  // namespace

void GW_FSPEC_LIST::separate_by_file_type(GW_FSPEC_LIST& out, int file_type) const {
    copy_if(*this, out, [=](const GW_FILE_SPEC& spec) { return spec.get_file_type() == file_type; });
}

void GW_FSPEC_LIST::separate_by_file_type(GW_FSPEC_LIST& out, const GW_LIST<GW_INT>* types) const {
    copy_if(*this, out, [=](const GW_FILE_SPEC& spec) { return spec.file_type_equal(types) != 0; });
}

void GW_FSPEC_LIST::separate_by_ext_type(GW_FSPEC_LIST& out, int ext_type, int file_type) const {
    copy_if(*this, out, [=](const GW_FILE_SPEC& spec) {
        return spec.get_ext_type() == ext_type && spec.get_file_type() == file_type;
    });
}

void GW_FSPEC_LIST::separate_by_ext_type(GW_FSPEC_LIST& out, const GW_LIST<GW_INT>* exts,
                                         int file_type) const {
    copy_if(*this, out, [=](const GW_FILE_SPEC& spec) { return spec.ext_type_equal(exts, file_type) != 0; });
}

void GW_FSPEC_LIST::separate_by_matching_file_name(GW_FSPEC_LIST& out, GW_REG_EXP* re) const {
    copy_if(*this, out, [=](const GW_FILE_SPEC& spec) { return re->string_match(spec.get_name()) != 0; });
}

long GW_FSPEC_LIST::file_size() {
    long total = 0;
    for (const GW_FILE_SPEC* spec : *this) {
        const long size = spec->file_size();
        if (size >= 0) total += size;
        count = static_cast<int>(size);
    }
    return total;
}

int GW_FSPEC_LIST::exist() const {
    return std::all_of(begin(), end(), [](const GW_FILE_SPEC* spec) { return spec->exist() != 0; }) ? 1 : 0;
}

int GW_FSPEC_LIST::copy(GW_DIR* target) const {
    for (const GW_FILE_SPEC* spec : *this) {
        GW_BUF_FILE(spec->get_name(), spec->get_dir(), gw::FILE_TYPE_REGULAR).copy(target);
    }
    return 1;
}

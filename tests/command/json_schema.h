// SPDX-License-Identifier: MIT
//
// Looks whether a document is as the schema says. The validator is of another's making.
#pragma once

#include <string>

#include "platform/shell_command.h"
#include "support/temp_dir.h"

namespace gw::test {

/// What the validator says about the document; "" when it is as the schema says.
inline std::string complaint_about(const std::string& document) {
    const TempDir dir;
    const std::string validator =
        dir.write("validate.py",
                  "import json, jsonschema, sys\n"
                  "schema, document = (json.load(open(name)) for name in sys.argv[1:])\n"
                  "jsonschema.Draft202012Validator.check_schema(schema)\n"
                  "jsonschema.Draft202012Validator(schema).validate(document)\n");
    const std::string file = dir.write("document.json", document);
    const int status =
        run_shell("python3 %s %s %s > %s 2>&1",
                  {validator, GLYPHWARD_TREE "/data/glyphward-fonts.schema.json", file, dir.file("said")});
    return status == 0 ? "" : "status " + std::to_string(status) + ": " + dir.read("said");
}

}  // namespace gw::test

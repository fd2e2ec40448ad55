#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Makes the fonts of a host what a profile says, with glyphward-fonts."""

import json
import os

from ansible.module_utils.basic import AnsibleModule

DOCUMENTATION = r"""
module: glyphward_profile
short_description: Makes the fonts of a host what a profile says
description:
  - Runs C(glyphward-fonts apply) on the host. What is so already is left alone.
options:
  profile:
    description: The profile, a file on the host; its fonts are beside it.
    type: path
    required: true
  root:
    description: Works on the installation below this directory, such as an image, and not on that of the host.
    type: path
  command:
    description: The command.
    type: path
    default: glyphward-fonts
"""

EXAMPLES = r"""
- name: The fonts of the lab
  glyphward_profile:
    profile: /srv/fonts/profile.toml
"""

RETURN = r"""
changes:
  description: What has changed, or with check mode would; see JSON.md of the package.
  type: list
  returned: always
undo:
  description: What "glyphward-fonts undo" takes to bring back what was replaced or deleted.
  type: str
  returned: when there is something
"""

DONE, FAILED, ALREADY = 0, 1, 3


def text(value):
    """A text of the document, or the bytes that are none, in hexadecimal."""
    return value if isinstance(value, str) else value["bytes"]


def lines(changes, side):
    """One side of the difference, a line for each change."""
    return "".join(
        "%s %s: %s\n" % (change["what"], text(change["subject"]), text(change[side]))
        for change in changes
        if text(change[side])
    )


def main():
    module = AnsibleModule(
        argument_spec={
            "profile": {"type": "path", "required": True},
            "root": {"type": "path"},
            "command": {"type": "path", "default": "glyphward-fonts"},
        },
        supports_check_mode=True,
    )
    command = [module.params["command"], "apply", "--json", module.params["profile"]]
    if module.check_mode:
        command.append("--check")
    if module.check_mode and not os.path.exists(module.params["profile"]):
        # The task before this one would have copied it.
        module.exit_json(changed=True, changes=[], msg="the profile is not on the host yet")
    if module.params["root"]:
        command += ["--root", module.params["root"]]
    status, out, err = module.run_command(command)
    try:
        document = json.loads(out)
    except ValueError:
        module.fail_json(msg="%s: %s" % (" ".join(command), err.strip()), status=status)
    changes = document.get("changes", [])
    result = {
        "changed": bool(changes),
        "changes": changes,
        "diff": {"before": lines(changes, "before"), "after": lines(changes, "after")},
        "status": status,
    }
    if document.get("undo"):
        result["undo"] = document["undo"]
    problems = ["%s: %s" % (text(one["subject"]), text(one["reason"])) for one in document["problems"]]
    # With check mode the status tells that something would be changed, too.
    would_change = module.check_mode and status == FAILED and not problems
    if status not in (DONE, ALREADY) and not would_change:
        module.fail_json(msg="; ".join(problems) or err.strip(), **result)
    for problem in problems:
        module.warn(problem)
    module.exit_json(**result)


if __name__ == "__main__":
    main()

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Every command and long option that `vexa --help` shows (at every level) is in the man page, and every
# command and option is offered by the bash completion: the documents keep up with the code.
#   tests/package/check-cli-docs.sh VEXA MAN_SOURCE COMPLETION
set -euo pipefail
vexa=$1
man=$2
completion=$3
problems=0

# The sub-commands and the long options of one help text.
subcommands() { awk 'tolower($0) ~ /^subcommands:/ {on = 1; next} /^[^ ]/ {on = 0} on && NF {print $1}'; }
long_options() { grep -oE '(^|[ ,])--[a-z][a-z-]*' | sed 's/^[ ,]*//' | sort -u; }

check() {
    local words=$1 help
    help=$("$vexa" $words --help)
    for option in $(long_options <<<"$help"); do
        grep -qF -- "*$option*" "$man" || { echo "vexa.1 lacks $option of 'vexa $words'"; problems=1; }
        grep -qE -- "(^|[ \"])$option( |\")" "$completion" || {
            echo "the completion lacks $option of 'vexa $words'"
            problems=1
        }
    done
    for command in $(subcommands <<<"$help"); do
        local full=${words:+$words }$command
        # "*ls*" in the man page, or "*method show*" for a command with sub-commands.
        grep -qE -- "\*$full[* ]" "$man" || { echo "vexa.1 lacks the command '$full'"; problems=1; }
        grep -qE -- "(^|[ \"])$command( |\")" "$completion" || {
            echo "the completion lacks the command '$full'"
            problems=1
        }
        check "$full"
    done
}

check ""
exit $problems

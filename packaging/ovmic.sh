#!/bin/bash
# Starts ovmic with settings and a language of the user's own. The program looks for both files beside the name that it
# is started by, so it is given a name in the user's configuration folder.
#
#   ovmic [PHOTOGRAPH...]
#   ovmic /batch PHOTOGRAPH PHOTOGRAPH...
prefix=$(dirname "$(dirname "$(realpath "${BASH_SOURCE[0]}")")")
folder=~/.config
[[ ${XDG_CONFIG_HOME:-} != /* ]] || folder=$XDG_CONFIG_HOME
folder=$folder/ovmic

# The language file for a locale: its country's, its language's, else the English one; none for Japanese, which is
# built in.
language_file() {
    local name
    for name in "${1%%[.@]*}" "${1%%[_.@]*}" en; do
        [[ $name != ja* ]] || return 0
        if [[ -n $name && -f $prefix/share/ovmic/lang/$name/ovmic_lang.ini ]]; then
            echo "$prefix/share/ovmic/lang/$name/ovmic_lang.ini"
            return
        fi
    done
}

# Only the first time. A language file that the user has removed or changed since then stays so.
if [[ ! -e $folder/ovmic.ini && ! -e $folder/ovmic_lang.ini ]] && mkdir -p -m 700 "$folder"; then
    file=$(language_file "${LC_ALL:-${LC_MESSAGES:-${LANG:-}}}")
    [[ -z $file ]] || cp "$file" "$folder/ovmic_lang.ini"
fi

# The debug lines are for developers: QT_LOGGING_RULES=default.debug=true shows them.
export QT_LOGGING_RULES=${QT_LOGGING_RULES-default.debug=false}
exec -a "$folder/ovmic" "$prefix/lib/ovmic/ovmic" "$@"

# Sourced, with `qt`, the major version of Qt.

suffix= # Of what is for another version of Qt than the default.
if [[ $qt != 5 ]]; then
    suffix=-qt$qt
fi

fail()
{
    echo "$*" >&2
    exit 1
}

# Writes one text for each pane into `folder` and, to the output, the resource script that lists them.
#
# Input: "[NAME]" on a line of its own, then the pane's text as it is.

/^\[.*\]$/ {
    if (file) close(file)
    resource = substr($0, 2, length($0) - 2)
    file = folder "/" resource
    printf "%s PANE \"%s\"\n", resource, file
    next
}

file { print > file }

# Writes one text for each command into `folder` and, to the output, the resource script that lists them.
#
# Input: a command's name on a line of its own, then indented lines "language  label | help text", English first.
# In a text, each key line is followed by the English text and the translation.

function put(line) { printf "%s%s", line, line_end == "crlf" ? "\r\n" : "\n" > file }

/^#/ || /^[ \t]*$/ { next }

/^[^ \t]/ { name = $1; next }

{
    split(substr($0, index($0, $2)), text, / *\| */)
    if ($1 == "english") { label = text[1]; help = text[2] }
    if ($1 != language) next
    resource = toupper(name) ".TXT"
    file = folder "/" resource
    put("#1 [" name "] Command.Label")
    put(label)
    put(text[1])
    put("#2 [" name "] Command.Helptext")
    put(help)
    put(text[2])
    put("#")
    close(file)
    printf "%s RCDATA \"%s\"\n", resource, file
}

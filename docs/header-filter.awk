# Doxygen input filter for the public headers (see Doxyfile, INPUT_FILTER).
#
# Every header opens with a plain // block: "zunX.h - what it is", then the
# contract of the family with indented usage snippets and tables. Doxygen reads
# only ///, so this turns that opening block into the file's documentation:
# the first line becomes "\file" with its brief, the indented runs (three
# spaces or more after a blank comment line) become \verbatim blocks, and the
# rest is text. Declarations of explicit instantiations ("extern template")
# are hidden: they say nothing to a reader, and Doxygen would list the template
# arguments as classes. One line out for each line in, so warnings keep their
# lines.
BEGIN { inHead = 1; verbatim = 0; afterBlank = 0 }

function closeVerbatim(line)
{
    if (verbatim) { verbatim = 0; return "/// \\endverbatim " line }
    return line
}

inHead && NR == 1 && /^\/\/ [^ ]+\.h - / {
    name = $2
    sub(/^\/\/ [^ ]+\.h - /, "")
    print "/// \\file " name
    brief = toupper(substr($0, 1, 1)) substr($0, 2)
    pendingBrief = brief
    next
}

inHead && /^\/\// {
    text = $0
    sub(/^\/\/ ?/, "", text)
    if (pendingBrief != "") { text = pendingBrief " " text; pendingBrief = "" }
    if (text ~ /^$/) {
        # A blank line closes a snippet unless the next line continues it;
        # closing and reopening gives the same picture.
        print closeVerbatim("///")
        afterBlank = 1
        next
    }
    if (text ~ /^  / && (afterBlank || verbatim)) {
        if (!verbatim) { verbatim = 1; print "/// \\verbatim " text; afterBlank = 0; next }
        print "/// " text
        next
    }
    afterBlank = 0
    print closeVerbatim("/// " text)
    next
}

inHead {
    inHead = 0
    if (verbatim) { verbatim = 0; print "/// \\endverbatim"; print; next }
}

/^extern template / { print "// " $0; next }

{ print }

# Prepares a guide for Doxygen: headings get names to link to, links to other guides and to classes become references,
# links to other files of the tree become text, pictures are found by their names.

# The name of a heading, as links have it.
function slug(heading)
{
    heading = tolower(heading)
    gsub(/[^a-z0-9 _-]/, "", heading)
    gsub(/ /, "-", heading)
    return heading
}

# guide or guide#heading, as Doxygen's pages and sections are named here.
function label(guide, heading)
{
    return heading == "" ? "guide_" guide : "guide_" guide "_" heading
}

function with_references(line, result, text, target, heading, n)
{
    result = ""
    while (match(line, /\[[^][]*\]\([^()]*\)/))
    {
        result = result substr(line, 1, RSTART - 1)
        text = substr(line, RSTART + 1, RLENGTH - 2)
        line = substr(line, RSTART + RLENGTH)
        n = index(text, "](")
        target = substr(text, n + 2)
        text = substr(text, 1, n - 1)
        heading = ""
        if ((n = index(target, "#")) > 0)
        {
            heading = substr(target, n + 1)
            target = substr(target, 1, n - 1)
        }
        if (target ~ /^[A-Za-z-]*\.md$/ || target == "")
        {
            sub(/\.md$/, "", target)
            if (target == "")
                target = guide
            result = result "@ref " label(target, heading) " \"" text "\""
        }
        else if (target ~ /^\.\.\/include\/gui\/gl\/[A-Za-z0-9]*\.h$/ && text !~ /\./)
            result = result "@ref gui::gl::" text " \"" text "\""
        else if (target ~ /^http/)
            result = result "[" text "](" target ")"
        else
            result = result (text ~ /[\/.]/ ? "`" text "`" : text)
    }
    return result line
}

# Doxygen would take the percent sign of a code span for its own.
function with_percents(line, result, code)
{
    result = ""
    while (match(line, /`[^`]*%[^`]*`/))
    {
        code = substr(line, RSTART + 1, RLENGTH - 2)
        gsub(/</, "\\&lt;", code)
        gsub(/>/, "\\&gt;", code)
        gsub(/%/, "\\%", code)
        result = result substr(line, 1, RSTART - 1) "<code>" code "</code>"
        line = substr(line, RSTART + RLENGTH)
    }
    return result line
}

BEGIN { is_code = 0 }

NR == 1 {
    guide = FILENAME
    sub(/.*\//, "", guide)
    sub(/\.md$/, "", guide)
}

/^```/ {
    is_code = !is_code
    print
    next
}

is_code {
    print
    next
}

/^# / {
    print $0 " {#" label(guide, "") "}"
    next
}

/^##+ / {
    heading = $0
    sub(/^#+ /, "", heading)
    print $0 " {#" label(guide, slug(heading)) "}"
    next
}

# Pictures, one after the other.
/^<img / {
    line = $0
    while (match(line, /<img [^>]*>/))
    {
        picture = substr(line, RSTART, RLENGTH)
        line = substr(line, RSTART + RLENGTH)
        name = picture
        sub(/.*src="[^"]*\//, "", name)
        sub(/".*/, "", name)
        width = picture
        sub(/.*width="/, "", width)
        sub(/".*/, "", width)
        alt = picture
        sub(/.*alt="/, "", alt)
        sub(/".*/, "", alt)
        print "\\image html " name " \"" alt "\" width=" width "px"
    }
    next
}

{ print with_percents(with_references($0)) }

# Prepares a header for Doxygen. In the headers a comment stands for all declarations up to the next blank line or
# comment; Doxygen knows the first of them only. The others get a comment here, on their own line so that line numbers
# stay what they are: the first one's again for a function of the same name, else one that names the first.
# Declarations that say all by themselves (see is_plain) get a comment that shows as nothing, so that Doxygen warns of
# the others. What is forbidden ("= delete") is left out.

function trimmed(text)
{
    gsub(/^[ \t]+|[ \t]+$/, "", text)
    return text
}

function count(text, what)
{
    return gsub(what, "&", text)
}

# A line without comment, and with nothing in its literals.
function code_of(text)
{
    gsub(/"([^"\\]|\\.)*"/, "\"\"", text)
    gsub(/'([^'\\]|\\.)'/, "0", text)
    sub(/\/\/.*/, "", text)
    return text
}

# The name that a declaration declares.
function name_of(code)
{
    if (match(code, /operator *[^ (]+ *\(/) || match(code, /~?[A-Za-z_][A-Za-z_0-9]* *\(/))
        return trimmed(substr(code, RSTART, RLENGTH - 1))
    sub(/ *(=|\{|\[|;).*/, "", code)
    return match(code, /[A-Za-z_][A-Za-z_0-9]*$/) ? substr(code, RSTART) : ""
}

# Begins or ends a scope whose members are declarations of their own, or declares nothing.
function is_between(code)
{
    return code ~ /^ *(template <.*> *)?(inline )?(class|struct|union|enum|namespace|extern)[ {"]/ ||
        code ~ /^ *[{}]/ || code ~ /^ *template *<.*> *$/ || code ~ /^ *(static_assert|friend|using [A-Za-z_:]+;)/
}

# What is defaulted, operators and destructors, what a container or a value has by custom, queries without arguments,
# fields and constructors of plain records, copies and moves, and what forwards to protected handlers.
function is_plain(code, name)
{
    if (code ~ /= default;/ || name ~ /^(operator|~)/ || name ~ /^(begin|end|size|capacity|length)$/)
        return 1
    if (code ~ /\(\) const/ && name ~ /^(get|is|has)[A-Z]/)
        return 1
    if (code !~ /\(/ && scope ~ /^struct /)
        return 1
    if (scope ~ (" " name "$") && (scope ~ /^struct / || code ~ ("\\((const )?" name "&&? [a-z]+\\)")))
        return 1
    return scope ~ /Helper$/
}

function forget()
{
    doc = ""
    first = ""
    first_doc = ""
}

# The comment for a declaration that has none of its own.
function comment_for(code, name, copy)
{
    if (name !~ /^~/ && first != "")
    {
        if (name != first)
            return " See " first ", whose description is this one's too."
        copy = first_doc
        gsub(/@param  *[^@]*/, "", copy)
        return trimmed(copy) != "" ? copy : first_doc
    }
    return is_plain(code, name) ? " &zwnj;" : ""
}

BEGIN { depth = 0; body = 0; goes_on = 0; forget() }

{
    text = trimmed($0)
    code = code_of($0)
    opened = count(code, "{") - count(code, "}")
    parens += count(code, "\\(") - count(code, "\\)")
}

# The rest of a declaration, and a function's body.
body > 0 || goes_on {
    print
    body += opened
    goes_on = body > 0 || parens > 0 || code !~ /[;}] *$/
    next
}

text == "" || text ~ /^#/ {
    print
    forget()
    next
}

text ~ /^\/\/\/($|[^<])/ {
    print
    if (doc == "")
        forget()
    doc = doc " " substr(text, 4)
    next
}

text ~ /^\/\// || text ~ /^(public|protected|private):/ {
    print
    forget()
    next
}

is_between(code) {
    print
    if (text !~ /^template/)
        forget()
    depth += opened
    parens = 0
    if (text ~ /^}/ && (depth in scopes))
    {
        scope = scopes[depth]
        delete scopes[depth]
    }
    if (match(code, /(class|struct) +(GUIGL_API +)?[A-Za-z_]+/) && code !~ /;/)
    {
        scopes[depth] = scope
        scope = substr(code, RSTART, RLENGTH)
    }
    next
}

code ~ /= delete;/ {
    print ""
    next
}

{
    name = name_of(code)
    comment = ""
    if (doc != "")
    {
        first = name
        first_doc = doc
        doc = ""
    }
    else if (text !~ /\/\/\/</)
        comment = comment_for(code, name)
    print (comment == "" ? $0 : "/**" comment " */ " $0)
    parens = count(code, "\\(") - count(code, "\\)")
    body = opened > 0 ? opened : 0
    goes_on = body > 0 || parens > 0 || code !~ /[;},] *$/
}

# Prepares a header for Doxygen. In the headers a comment stands for all declarations up to the next blank line or
# comment; Doxygen knows the first of them only. The others get a comment here, on their own line so that line numbers
# stay what they are: the first one's again for a function of the same name, else one that names the first.
# Declarations that say all by themselves (see is_plain) get a comment that shows as nothing, so that Doxygen warns of the
# others. What is forbidden ("= delete") is left out.

function trimmed(text)
{
    gsub(/^[ \t]+|[ \t]+$/, "", text)
    return text
}

# The name that a declaration declares.
function name_of(text, n)
{
    if (match(text, /operator *[^ (]+ *\(/) || match(text, /operator\(\)/))
        return trimmed(substr(text, RSTART, RLENGTH - 1))
    if (match(text, /~?[A-Za-z_][A-Za-z_0-9]* *\(/))
        return trimmed(substr(text, RSTART, RLENGTH - 1))
    sub(/ *(=|\{|\[|;).*/, "", text)
    n = match(text, /[A-Za-z_][A-Za-z_0-9]*$/)
    return n ? substr(text, RSTART) : ""
}

function count(text, what)
{
    return gsub(what, "&", text)
}

# What is neither text nor comment.
function code_of(text)
{
    gsub(/"([^"\\]|\\.)*"/, "\"\"", text)
    gsub(/'([^'\\]|\\.)'/, "0", text)
    sub(/\/\/.*/, "", text)
    return text
}

# Queries without arguments, what a container or a value has by custom, operators, fields of plain records, and what
# forwards to protected handlers.
function is_plain(code, name)
{
    if (code ~ /= default;/ || name ~ /^operator/ || name ~ /^~/ || name ~ /^(begin|end|size|capacity|length)$/)
        return 1
    if (code ~ /\(\) const/ && name ~ /^(get|is|has)[A-Z]/)
        return 1
    if (code !~ /\(/ && scope ~ /^struct /)
        return 1
    # Constructors of records, copies and moves.
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

BEGIN { nested = 0; body = 0; pending = 0; scope = ""; forget() }

{
    line = $0
    text = trimmed(line)
    code = code_of(line)
    opened = count(code, "{") - count(code, "}")

    # Inside a function's body, or a declaration that goes on.
    if (body > 0 || pending)
    {
        print line
        if (pending)
        {
            parens += count(code, "\\(") - count(code, "\\)")
            if (body == 0 && opened == 0 && parens <= 0 && code ~ /[;}] *$/)
                pending = 0
        }
        if (opened != 0 || body > 0)
        {
            body += opened
            if (body <= 0)
            {
                body = 0
                pending = 0
            }
        }
        next
    }
    if (text ~ /^#/ && text !~ /\\$/ || text == "")
    {
        print line
        forget()
        next
    }
    if (text ~ /^\/\/\/($|[^<])/)
    {
        if (doc == "")
            forget()
        doc = doc " " (substr(text, 4))
        print line
        next
    }
    if (text ~ /^\/\// || text ~ /^(public|protected|private):/)
    {
        print line
        forget()
        next
    }
    # Scopes whose members are declarations of their own.
    if (code ~ /^ *(template <.*> *)?(inline )?(class|struct|union|enum|namespace|extern)[ {"]/ || text ~ /^[{}]/ || text ~ /^template *<.*> *$/ || text ~ /^(static_assert|friend|using [A-Za-z_:]+;)/)
    {
        print line
        if (text !~ /^template/)
            forget()
        nested += opened
        if (text ~ /^}/ && (nested in scopes))
        {
            scope = scopes[nested]
            delete scopes[nested]
        }
        if (match(code, /(class|struct) +(GUIGL_API +)?[A-Za-z_]+/) && code !~ /;/)
        {
            scopes[nested] = scope
            scope = substr(code, RSTART, RLENGTH)
        }
        next
    }
    if (code ~ /= delete;/)
    {
        print ""
        next
    }

    # A declaration.
    name = name_of(code)
    indent = line
    sub(/[^ \t].*/, "", indent)
    added = ""
    if (doc != "")
    {
        first = name
        first_doc = doc
        doc = ""
    }
    else if (text !~ /\/\/\/</)
    {
        if (name ~ /^~/)
            added = " &zwnj;"
        else if (first != "" && name == first)
        {
            copy = first_doc
            gsub(/@param  *[^@]*/, "", copy)
            added = trimmed(copy) != "" ? copy : first_doc
        }
        else if (first != "")
            added = " See " first ", whose description is this one's too."
        else if (is_plain(code, name))
            added = " &zwnj;"
    }
    print (added == "" ? line : indent "/**" added " */ " trimmed(line))
    parens = count(code, "\\(") - count(code, "\\)")
    if (opened > 0)
        body = opened
    else if (code !~ /[;},] *$/ || parens > 0)
        pending = 1
}

# Makes a source of the page's style and script, with the hashes by which the page's policy knows them.
#
#   cmake -DSTYLE=page.css -DSCRIPT=page.js -DOUTPUT=page_assets.cpp -P embed.cmake

# In base 64, of 64 hexadecimal digits: 3 bytes give 4 characters, and the last group has 2.
function(base64_of hex result)
  set(digits "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(text "")
  foreach(at RANGE 0 60 6)
    string(SUBSTRING "${hex}00" ${at} 6 group)
    foreach(shift IN ITEMS 18 12 6 0)
      math(EXPR index "(0x${group} >> ${shift}) & 63")
      string(SUBSTRING "${digits}" ${index} 1 digit)
      string(APPEND text "${digit}")
    endforeach()
  endforeach()
  string(REGEX REPLACE ".$" "=" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

set(source "#include \"hosts/kivreport/page/page_assets.h\"\n\nnamespace kivreport {\n")
foreach(name IN ITEMS Style Script)
  string(TOUPPER ${name} file)
  # A browser takes a carriage return away before it looks at the hash.
  file(READ "${${file}}" text)
  string(REPLACE "\r" "" text "${text}")
  string(SHA256 hash "${text}")
  base64_of(${hash} hash)
  string(APPEND source "\nconst char* const kPage${name} = R\"asset(${text})asset\";\n"
                       "const char* const kPage${name}Hash = \"sha256-${hash}\";\n")
endforeach()
file(WRITE "${OUTPUT}" "${source}\n}  // namespace kivreport\n")

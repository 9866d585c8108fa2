# Writes the fuzz dictionary: the escapes, then "name=" for every field
# some verb reads, from the build's list of each verb's fields.
#   cmake -DESCAPES=escapes.dict -DFIELDS=verb_fields.txt -DOUT=form_fields.dict -P dictionary.cmake
file(READ ${ESCAPES} dictionary)
file(STRINGS ${FIELDS} verbs)
set(names "")
foreach(line IN LISTS verbs)
  string(REPLACE " " ";" words "${line}")
  list(POP_FRONT words)
  list(APPEND names ${words})
endforeach()
list(REMOVE_DUPLICATES names)
foreach(name IN LISTS names)
  string(APPEND dictionary "\"${name}=\"\n")
endforeach()
file(WRITE ${OUT} "${dictionary}")

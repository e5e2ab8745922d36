# cmake -DOUTPUT=file.cpp -DHEADER=include -DNAMESPACE=name "-DTEXTS=identifier=path;..." -P EmbedTexts.cmake
# Writes the texts as constants of the type std::string_view.
set(code "#include \"${HEADER}\"\n\nnamespace ${NAMESPACE} {\n")
foreach(pair IN LISTS TEXTS)
    string(REGEX MATCH "^([^=]+)=(.+)$" matched "${pair}")
    set(name "${CMAKE_MATCH_1}")
    file(READ "${CMAKE_MATCH_2}" text)
    string(APPEND code "\nextern const std::string_view ${name};\nconstinit const std::string_view ${name} = R\"=====(${text})=====\";\n")
endforeach()
string(APPEND code "\n} // namespace ${NAMESPACE}\n")
file(WRITE "${OUTPUT}" "${code}")

# What the command "glyphward-fonts" is made with.
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)

# The short front of the build. CMakePresets.json holds the configurations.
.PHONY: all
all: build

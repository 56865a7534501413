extern "C" int answerOfALibraryWithoutQt() {
    return 42;
}

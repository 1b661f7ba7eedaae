FUNCTION PBMAIN () AS LONG
    library = LoadLibraryA("version.dll")
    FreeLibrary library
    FUNCTION = library <> 0
END FUNCTION

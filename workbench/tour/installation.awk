# Prints the sources of resource libraries as large as those of a whole CAD installation, in the form that
# resource_library() reads: what=commands prints the commands, what=panes the panes that list them.
BEGIN {
    verbs = split("Create Edit Redefine Delete Suppress Resume Copy Paste Mirror Pattern Group Ungroup Hide Show " \
                  "Isolate Rename Reorder Insert Replace Update Check Measure Export Import Print Trim Extend Offset " \
                  "Thicken Merge Split Project Wrap Rotate Translate Scale Align Constrain Dimension Annotate Analyze " \
                  "Simplify Verify Compare Publish Archive Restore Select Filter Sort Highlight Freeze Unfreeze Lock " \
                  "Unlock Link Unlink Convert Flatten Unbend", verb, " ")
    split("Hole Round Chamfer Draft Shell Rib Sweep Blend Extrusion Revolution Helix Thread Groove Boss Pocket " \
                  "Surface Quilt Curve Point Axis Plane CoordSystem Sketch Section Viewpoint Sheet Table Balloon Note " \
                  "Symbol Tolerance Finish Weld Flange Bend Punch Mold Cast Core Cavity Runner Gate Fixture Tool " \
                  "Toolpath Operation Machine Mechanism Joint Spring Damper Load Mesh Result Cable Pipe Harness " \
                  "Component Family Layer", base, " ")
    kinds = split("Solid Thin Simple Assembly Tapered Variable Flexible Inherited", kind, " ")
    nouns = 0
    for (b in base) for (k = 1; k <= kinds; k++) noun[++nouns] = kind[k] base[b]
    for (n = 1; n <= nouns; n++) {
        if (what == "panes") {
            printf "[%s_MENU_PANE.RES]\n(Pane %s_menu", toupper(noun[n]), tolower(noun[n])
            for (v = 1; v <= verbs; v++) printf "\n    (Item ProCmd%s%s)", noun[n], verb[v]
            print ")"
            continue
        }
        for (v = 1; v <= verbs; v++) {
            printf "ProCmd%s%s\n", noun[n], verb[v]
            printf "  english  &%s %s | %s the selected %s.\n", verb[v], noun[n], verb[v], tolower(noun[n])
            printf "  german   %s: &%s | %s: %s.\n", noun[n], verb[v], noun[n], verb[v]
        }
    }
}

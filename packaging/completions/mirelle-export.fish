# Completion of mirelle-export for fish.

set -l frames '__fish_seen_subcommand_from frames'
set -l info '__fish_seen_subcommand_from info'
set -l none 'not __fish_seen_subcommand_from frames info'

complete -c mirelle-export -f
complete -c mirelle-export -n $none -a frames -d 'Write frames as image files'
complete -c mirelle-export -n $none -a info -d 'Tell what a scene holds'
complete -c mirelle-export -n $none -l help -d 'Show the commands'
complete -c mirelle-export -n $none -l version -d 'Show the version'

complete -c mirelle-export -n $frames -l name -x -d 'What all file names begin with'
complete -c mirelle-export -n $frames -l format -x -a 'png exr' -d 'Format of the image files'
complete -c mirelle-export -n $frames -l layers -x -a 'all visible active' -d 'Which layers'
complete -c mirelle-export -n $frames -l frames -x -a 'all range' -d 'Which frames'
complete -c mirelle-export -n $frames -l clones -x -a 'exclude hold sequence' -d 'Frames that repeat a drawing'
complete -c mirelle-export -n $frames -l combine -d 'One picture of all chosen layers for each frame'
complete -c mirelle-export -n $frames -l black -d 'All lines black'
complete -c mirelle-export -n $frames -l no-alpha -d 'On white instead of a transparent ground'
complete -c mirelle-export -n $frames -l verbose -d 'Also tell what the libraries have to say'
complete -c mirelle-export -n $frames -l help -d 'Show the options'
complete -c mirelle-export -n $frames -l version -d 'Show the version'
complete -c mirelle-export -n $frames -k -a '(__fish_complete_suffix .mr)'

complete -c mirelle-export -n $info -l json -d 'As JSON, for programs'
complete -c mirelle-export -n $info -l verbose -d 'Also tell what the libraries have to say'
complete -c mirelle-export -n $info -l help -d 'Show the options'
complete -c mirelle-export -n $info -l version -d 'Show the version'
complete -c mirelle-export -n $info -k -a '(__fish_complete_suffix .mr)'

# Installs the packages of FROM's lock file into the folder TO.
file(MAKE_DIRECTORY ${TO})
file(COPY ${FROM}/package.json ${FROM}/package-lock.json DESTINATION ${TO})
execute_process(COMMAND npm ci --ignore-scripts --no-audit --no-fund WORKING_DIRECTORY ${TO}
    COMMAND_ERROR_IS_FATAL ANY)

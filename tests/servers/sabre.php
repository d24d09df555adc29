<?php
// A WebDAV server over a folder, by sabre/dav, for PHP's own web server: one user, free space, and files
// that can be appended to. Settings come from the environment.
error_reporting(0);
require_once 'Sabre/autoload.php';

class OneUser extends \Sabre\DAV\Auth\Backend\AbstractBasic {
    protected function validateUserPass($user, $password) {
        return $user === getenv('OB_USER') && $password === getenv('OB_PASSWORD');
    }
}

$server = new \Sabre\DAV\Server(new \Sabre\DAV\FSExt\Directory(getenv('OB_FILES')));
$server->setBaseUri(getenv('OB_ROOT'));
$server->addPlugin(new \Sabre\DAV\Auth\Plugin(new OneUser(), 'files'));
$server->addPlugin(new \Sabre\DAV\PartialUpdate\Plugin());
$server->exec();
